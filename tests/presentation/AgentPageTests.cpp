#include "presentation/AgentPage.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

using Kind = AgentPage::Kind;

const AgentPage codexPage = AgentPage::provider(AgentProviderID::codex());

TEST(AgentPage, ComesBackFromItsStoredForm) {
    EXPECT_EQ(AgentPage::fromStoredForm(codexPage.storedForm()), codexPage);
    for (const Kind kind :
         {Kind::overview, Kind::history, Kind::activity, Kind::settings, Kind::help, Kind::about}) {
        const AgentPage page = AgentPage::of(kind);
        EXPECT_EQ(AgentPage::fromStoredForm(page.storedForm()), page) << page.storedForm();
    }
    EXPECT_EQ(AgentPage::fromStoredForm("cellar"), AgentPage::of(Kind::overview));
}

TEST(AgentNavigationState, GoesBackAndForwardAlongTheWayThatWasTaken) {
    AgentNavigationState navigation;
    const auto at = [&] { return navigation.selection().storedForm(); };
    navigation.goBack();
    navigation.goForward();
    EXPECT_EQ(at(), "overview");
    navigation.select(codexPage);
    navigation.select(codexPage);
    navigation.select(AgentPage::of(Kind::history));
    navigation.goBack();
    EXPECT_EQ(at(), "provider:codex");
    navigation.goBack();
    EXPECT_EQ(at(), "overview");
    navigation.goForward();
    navigation.goForward();
    EXPECT_EQ(at(), "history");
    navigation.goBack();
    navigation.select(AgentPage::of(Kind::settings));
    // Another way was taken.
    navigation.goForward();
    EXPECT_EQ(at(), "settings");
}

TEST(AgentNavigationState, LeadsPastPagesThatAreGone) {
    AgentNavigationState navigation;
    bool isCodexShown = true;
    navigation.isShown = [&](const AgentPage& page) { return page != codexPage || isCodexShown; };
    navigation.select(AgentPage::of(Kind::history));
    navigation.select(codexPage);
    isCodexShown = false;
    navigation.replaceSelection(AgentPage::of(Kind::overview));
    navigation.select(AgentPage::of(Kind::settings));
    navigation.select(codexPage);
    navigation.select(AgentPage::of(Kind::help));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::settings));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::overview));
    navigation.goBack();
    EXPECT_EQ(navigation.selection(), AgentPage::of(Kind::history));
}

} // namespace
} // namespace vellmark::tests
