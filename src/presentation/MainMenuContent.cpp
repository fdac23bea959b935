#include "presentation/MainMenuContent.h"

#include "text/Dates.h"

namespace vellmark {

std::vector<MenuContent> mainMenuContent(const Localization& words) {
    const auto item = [&](std::string_view titleKey, std::string_view action, char key = 0) {
        return MenuItemContent{words.text(titleKey), action, key};
    };
    const MenuItemContent separator;
    const auto menu = [&](std::string_view titleKey, std::vector<MenuItemContent> items,
                          MenuContent::Role role = MenuContent::Role::plain) {
        return MenuContent{words.text(titleKey), role, std::move(items)};
    };
    return {
        menu("app.name",
             {item("about.title", menuAction::showAbout), separator,
              item("menu.settings", menuAction::showSettings, ','), separator,
              item("menu.hide", menuAction::hide, 'h'), separator,
              item("menu.quit", menuAction::terminate, 'q')},
             MenuContent::Role::application),
        menu("menu.file", {item("menu.close", menuAction::closeWindow, 'w'), separator,
                           item("menu.saveActivity", menuAction::saveActivity, 's')}),
        menu("menu.edit", {item("menu.copy", menuAction::copy, 'c'),
                           item("menu.selectAll", menuAction::selectAll, 'a')}),
        menu("menu.window", {item("menu.minimize", menuAction::minimize, 'm')}),
        menu("menu.help",
             {item("menu.help.website", menuAction::openWebsite),
              item("menu.help.support", menuAction::openSupport),
              item("menu.help.report", menuAction::showSupportReport), separator,
              item("legal.terms", menuAction::showTerms),
              item("legal.privacy", menuAction::showPrivacy)},
             MenuContent::Role::help),
    };
}

bool isMenuItemEnabled(std::string_view action, bool isMainWindowVisible,
                       const AgentPage& shownPage) {
    if (action == menuAction::saveActivity) {
        return isMainWindowVisible && shownPage.kind == AgentPage::Kind::activity;
    }
    return true;
}

std::string activityExportFileName(Instant now) {
    return "Vellmark-Aktivitaet-" + formatDate(now, "yyyy-MM-dd", TimeZone::system()) + ".txt";
}

std::string websiteURL(const Localization& words) {
    return words.text("website.base");
}

std::string supportURL(const Localization& words) {
    const std::string base = websiteURL(words);
    return base + (base.ends_with('/') ? "" : "/") + "support.html";
}

} // namespace vellmark
