#include "presentation/AboutPageContent.h"

namespace vellmark {
namespace {

struct Part {
    const char* name;
    const char* useKey;
    const char* licence;
    const char* url;
};

/// The program and the libraries that it is linked with; docs/architecture.md says why these.
constexpr Part parts[] = {
    {"Vellmark", "about.use.self", "MIT", "https://spdx.org/licenses/MIT.html"},
    {"Qt 6", "about.use.qt", "LGPL-3.0",
     "https://www.qt.io/licensing/open-source-lgpl-obligations"},
    {"ICU", "about.use.icu", "Unicode-3.0", "https://icu.unicode.org"},
    {"RE2", "about.use.re2", "BSD-3-Clause", "https://github.com/google/re2"},
    {"nlohmann/json", "about.use.json", "MIT", "https://json.nlohmann.me"},
    {"CLI11", "about.use.cli11", "BSD-3-Clause", "https://github.com/CLIUtils/CLI11"},
    {"sdbus-c++", "about.use.sdbus", "LGPL-2.1", "https://github.com/Kistler-Group/sdbus-cpp"},
    {"libsystemd", "about.use.sdbus", "LGPL-2.1", "https://systemd.io"},
    {"libxcb", "about.use.xcb", "MIT", "https://xcb.freedesktop.org"},
};

} // namespace

AboutPageContent aboutPageContent(const Localization& words) {
    AboutPageContent content;
    content.head = pageHead({"nav.about", "about.subtitle"}, words);
    content.name = words.text("app.name");
    content.version = words.format("about.version", {std::string(VELLMARK_VERSION)});
    content.description = words.text("about.description");
    content.privacy = words.text("about.privacy");
    content.links = {
        {words.text("about.website"), AboutLink::website, true},
        {words.text("help.support.openPage"), AboutLink::supportPage, true},
        {words.text("legal.terms"), AboutLink::terms, false},
        {words.text("legal.privacy"), AboutLink::privacy, false},
    };
    content.licencesTitle = words.text("about.licences");
    content.licencesIntroduction = words.text("about.licences.intro");
    for (const Part& part : parts) {
        content.licences.push_back(
            {.name = part.name,
             .use = words.text(part.useKey),
             .licence = part.licence,
             .url = part.url,
             .accessibilityText = words.format("about.licence.open", {std::string(part.name)})});
    }
    return content;
}

} // namespace vellmark
