#pragma once

#include "model/AgentProviderID.h"
#include "model/UsageProviderError.h"
#include "platform/Machine.h"
#include "probes/AgentUsageProvider.h"
#include "probes/CLISetupInfo.h"
#include "probes/SavedRun.h"
#include "probes/WayOut.h"

#include <filesystem>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace vellmark {

/// Red, green, blue, alpha, each 0 to 1, sRGB.
struct ColorComponents {
    double red = 0;
    double green = 0;
    double blue = 0;
    double alpha = 1;
    bool operator==(const ColorComponents&) const = default;
};

/// Where an agent's logo can be had; the first source that yields an image is used.
struct ProviderLogoSource {
    enum class Kind { imageFile, appIcon };
    Kind kind = Kind::imageFile;
    std::string path;
};

enum class DataSourceKind { cli, apiKey, localFile };
enum class MeasureKind { timeWindow, balance };
enum class WindowKind { session, day, week, month, model };

/// How an agent's CLI is installed and logged in to.
struct ProviderSetup {
    CLISetupInfo info;
    std::optional<std::string> missingHintKey;
    /// Asks the CLI at the given path whether the user is logged in; absent when it cannot be
    /// told. Blocks for as long as the check's own limits allow.
    std::function<std::optional<bool>(const Machine&, const std::filesystem::path&)> isLoggedIn;
    std::optional<std::string> loginHintKey;
    /// The files that change when somebody logs in or out. Nobody reads them: that one has changed
    /// is a reason to ask.
    std::function<std::vector<std::filesystem::path>(const Machine&)> loginTraces = {};
};

/// Everything that is known about an agent without running it.
struct ProviderDescriptor {
    AgentProviderID id;
    std::string nameKey;
    std::string shortNameKey;
    std::string sourceKey;
    ColorComponents accentDark;
    ColorComponents accentLight;
    std::vector<ProviderLogoSource> logo;
    std::string fallbackLetter;
    DataSourceKind dataSource = DataSourceKind::cli;
    std::set<MeasureKind> measures;
    /// In the order in which the windows are presented.
    std::vector<WindowKind> windowKinds;
    /// The path of the agent's executable, or nothing.
    std::function<std::optional<std::filesystem::path>(const Machine&)> executableLocator;
    std::optional<std::string> cliHintKey;
    std::optional<ProviderSetup> setup;
    bool showsSourceAsSubtitle = false;
    /// The ways to read it where there are several, best first; one can be chosen by name.
    std::vector<std::string> readingWays;
    /// For how long a window still counts that a reading leaves out, by its identifier: some
    /// answers lack rows at times. Without it, at once no more.
    std::function<Seconds(std::string_view windowID)> remembersWindow;
    /// What the user can do about failures of its own; about any other see `wayOutOf`.
    std::map<UsageProviderError::Kind, WayOut> waysOut;
    /// A fetch that failed with a time-out is tried again once after this many seconds.
    std::optional<double> timeoutRetryDelaySeconds;

    /// Whether the agent's windows may drive the status glyph.
    bool drivesGlyph() const { return measures.contains(MeasureKind::timeWindow); }
};

struct ProviderRegistration {
    ProviderDescriptor descriptor;
    std::function<std::unique_ptr<AgentUsageProvider>(const Machine&, const ReadingOptions&)> make;
    SavedRunReader savedRuns = {};
};

/// The agents that can be monitored, in their fixed order: Codex, Claude, Antigravity.
const std::vector<ProviderRegistration>& providerRegistry();

/// Null when the agent is unknown.
const ProviderRegistration* providerRegistration(const AgentProviderID& id);
const ProviderDescriptor* providerDescriptor(const AgentProviderID& id);

/// What helps against a failure of an agent: what its registration says; else a program that is
/// missing is installed, and anything else is worth another reading.
WayOut wayOutOf(const AgentProviderID& agent, UsageProviderError::Kind failure);

} // namespace vellmark
