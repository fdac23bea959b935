#pragma once

#include "presentation/PageHeadContent.h"

#include <string>
#include <vector>

namespace vellmark {

/// Where the links of the about page lead.
enum class AboutLink { website, supportPage, terms, privacy };

struct AboutLinkContent {
    std::string title;
    AboutLink link = AboutLink::website;
    /// It leaves the program.
    bool opensBrowser = false;
    bool operator==(const AboutLinkContent&) const = default;
};

/// Something that the program is made of.
struct LicenceContent {
    std::string name;
    /// What the program uses it for.
    std::string use;
    std::string licence;
    std::string url;
    /// Of the link to its page.
    std::string accessibilityText;
    bool operator==(const LicenceContent&) const = default;
};

/// What the about page and the about window show; the window leaves out head and licences.
struct AboutPageContent {
    PageHeadContent head;
    std::string name;
    std::string version;
    std::string description;
    std::string privacy;
    std::vector<AboutLinkContent> links;
    std::string licencesTitle;
    std::string licencesIntroduction;
    std::vector<LicenceContent> licences;
    bool operator==(const AboutPageContent&) const = default;
};

AboutPageContent aboutPageContent(const Localization& words);

} // namespace vellmark
