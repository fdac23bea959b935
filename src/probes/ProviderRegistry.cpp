#include "probes/ProviderRegistry.h"

#include "platform/SystemDirectories.h"
#include "probes/ExecutableLocator.h"
#include "probes/antigravity/AntigravityLoginCheck.h"
#include "probes/antigravity/AntigravityReading.h"
#include "probes/antigravity/AntigravityUsageProvider.h"
#include "probes/claude/ClaudeLoginCheck.h"
#include "probes/claude/ClaudeModelWindow.h"
#include "probes/claude/ClaudeSavedRun.h"
#include "probes/claude/ClaudeUsageProvider.h"
#include "probes/codex/CodexLoginCheck.h"
#include "probes/codex/CodexReading.h"
#include "probes/codex/CodexUsageProvider.h"

#include <algorithm>

namespace vellmark {

namespace {

using Logo = ProviderLogoSource::Kind;
using Failure = UsageProviderError::Kind;

// Commands and pages as the vendors document them.

CLISetupInfo codexCLI() {
    return {
        .installCommand = "curl -fsSL https://chatgpt.com/codex/install.sh | sh",
        .installAlternative = "brew install --cask codex",
        .loginCommand = "codex login",
        .installDocsURL = "https://developers.openai.com/codex/cli",
        .loginDocsURL = "https://developers.openai.com/codex/auth",
        .toolName = "codex",
        .loginArguments = {"login"},
        .loginCheckArguments = std::vector<std::string>{"login", "--help"},
    };
}

CLISetupInfo claudeCLI() {
    return {
        .installCommand = "curl -fsSL https://claude.ai/install.sh | bash",
        .installAlternative = "brew install --cask claude-code",
        .loginCommand = "claude auth login",
        .installDocsURL = "https://code.claude.com/docs/en/setup",
        .loginDocsURL = "https://code.claude.com/docs/en/authentication",
        .toolName = "claude",
        .loginArguments = {"auth", "login"},
        .loginCheckArguments = std::vector<std::string>{"auth", "login", "--help"},
    };
}

CLISetupInfo antigravityCLI() {
    return {
        .installCommand = "curl -fsSL https://antigravity.google/cli/install.sh | bash",
        .installAlternative = "brew install --cask antigravity-cli",
        .loginCommand = "agy",
        .installDocsURL = "https://antigravity.google/docs/get-started",
        .loginDocsURL = "https://antigravity.google/docs",
        .toolName = "agy",
        .loginArguments = {},
        .loginCheckArguments = {},
    };
}

// The fallback letters are the initials of the vendors, not of the agents.

/// The directory that a variable names, else the usual one.
std::filesystem::path directoryOf(const Machine& machine, const char* variable, const char* usual) {
    const auto named = absolutePathVariable(machine.environment, variable);
    return named.empty() ? machine.resolved(usual) : named;
}

ProviderDescriptor codexDescriptor() {
    return {
        .id = AgentProviderID::codex(),
        .nameKey = "provider.codex.name",
        .shortNameKey = "provider.codex.short",
        .sourceKey = "source.codex",
        .accentDark = {0.25, 0.84, 0.68, 1.0},
        .accentLight = {0.0, 0.5, 0.4, 1.0},
        .logo = {{Logo::imageFile,
                  "/Applications/ChatGPT.app/Contents/Resources/icon-codex-dark-color.png"},
                 {Logo::imageFile,
                  "/Applications/ChatGPT.app/Contents/Resources/icon-chatgpt.png"}},
        .fallbackLetter = "O",
        .dataSource = DataSourceKind::cli,
        .measures = {MeasureKind::timeWindow},
        .windowKinds = {WindowKind::session, WindowKind::week},
        .executableLocator = locateCodex,
        .cliHintKey = "settings.cli.codexHint",
        .setup = ProviderSetup{
            .info = codexCLI(),
            .missingHintKey = "setup.codex.chatgptHint",
            .isLoggedIn = [](const Machine& machine,
                             const auto& path) { return codexIsLoggedIn(machine, path); },
            .loginHintKey = {},
            .loginTraces = [](const Machine& machine) -> std::vector<std::filesystem::path> {
                return {directoryOf(machine, "CODEX_HOME", "~/.codex") / "auth.json"};
            },
        },
        .showsSourceAsSubtitle = true,
        .readingWays = {},
        .remembersWindow = {},
        .waysOut = {{Failure::codexNotLoggedIn, WayOut::logIn},
                    {Failure::codexAPIKey, WayOut::logIn}},
        .timeoutRetryDelaySeconds = 20.0,
    };
}

ProviderDescriptor claudeDescriptor() {
    return {
        .id = AgentProviderID::claude(),
        .nameKey = "provider.claude.name",
        .shortNameKey = "provider.claude.short",
        .sourceKey = "source.claude",
        .accentDark = {0.86, 0.49, 0.33, 1.0},
        .accentLight = {0.70, 0.32, 0.17, 1.0},
        .logo = {{Logo::appIcon, "/Applications/Claude.app"}},
        .fallbackLetter = "A",
        .dataSource = DataSourceKind::cli,
        .measures = {MeasureKind::timeWindow},
        .windowKinds = {WindowKind::session, WindowKind::week, WindowKind::model},
        .executableLocator = locateClaude,
        .cliHintKey = "settings.cli.claudeHint",
        .setup = ProviderSetup{
            .info = claudeCLI(),
            .missingHintKey = {},
            .isLoggedIn =
                [](const Machine& machine, const std::filesystem::path& executable) {
                    return claudeLogin(machine, executable).isLoggedIn;
                },
            .loginHintKey = {},
            .loginTraces = [](const Machine& machine) -> std::vector<std::filesystem::path> {
                return {directoryOf(machine, "CLAUDE_CONFIG_DIR", "~/.claude") /
                            ".credentials.json",
                        machine.resolved("~/.claude.json")};
            },
        },
        .showsSourceAsSubtitle = true,
        .readingWays = {claudeQueryWay, claudeSessionWay},
        .remembersWindow = claudeRemembersWindow,
        .waysOut = {{Failure::claudeNotLoggedIn, WayOut::logIn},
                    {Failure::claudeAPIKey, WayOut::logIn},
                    {Failure::claudeOptionRefused, WayOut::update}},
        .timeoutRetryDelaySeconds = {},
    };
}

ProviderDescriptor antigravityDescriptor() {
    return {
        .id = AgentProviderID::antigravity(),
        .nameKey = "provider.antigravity.name",
        .shortNameKey = "provider.antigravity.short",
        .sourceKey = "source.antigravity",
        .accentDark = {0.4, 0.6, 1.0, 1.0},
        .accentLight = {0.1, 0.35, 0.8, 1.0},
        .logo = {{Logo::appIcon, "/Applications/Antigravity.app"},
                 {Logo::appIcon, "/Applications/Google Antigravity.app"}},
        .fallbackLetter = "G",
        .dataSource = DataSourceKind::cli,
        .measures = {MeasureKind::timeWindow},
        .windowKinds = {WindowKind::model, WindowKind::session, WindowKind::week, WindowKind::day},
        .executableLocator = locateAntigravity,
        .cliHintKey = "settings.cli.antigravityHint",
        .setup = ProviderSetup{
            .info = antigravityCLI(),
            .missingHintKey = {},
            .isLoggedIn = [](const Machine& machine,
                             const auto&) { return antigravityIsLoggedIn(machine); },
            .loginHintKey = "setup.antigravity.exitHint",
            .loginTraces = [](const Machine& machine) -> std::vector<std::filesystem::path> {
                return {machine.resolved("~/.gemini/antigravity-cli/antigravity-oauth-token"),
                        machine.resolved("~/.gemini/oauth_creds.json")};
            },
        },
        .showsSourceAsSubtitle = false,
        .readingWays = {},
        .remembersWindow = {},
        .waysOut = {{Failure::antigravityNotLoggedIn, WayOut::logIn},
                    {Failure::antigravityIneligible, WayOut::openSettings},
                    {Failure::antigravityReadingCosts, WayOut::update}},
        .timeoutRetryDelaySeconds = {},
    };
}

template<typename Provider>
std::unique_ptr<AgentUsageProvider> make(const Machine& machine, const ReadingOptions&) {
    return std::make_unique<Provider>(machine);
}

AgentUsageSnapshot readSavedCodexRun(const SavedRun& run, const Machine& machine) {
    return codexSnapshot(run.output, run.now, machine.home.string());
}

AgentUsageSnapshot readSavedAntigravityRun(const SavedRun& run, const Machine&) {
    return antigravitySnapshot({.output = AntigravityOutput::read(run.output, TimeZone::system()),
                                .log = run.log,
                                .exitStatus = run.exitStatus,
                                .timedOut = run.timedOut},
                               run.now);
}

std::unique_ptr<AgentUsageProvider> makeClaude(const Machine& machine,
                                               const ReadingOptions& options) {
    return std::make_unique<ClaudeUsageProvider>(machine, ClaudeUsageProvider::defaultHardLimit,
                                                 options);
}

} // namespace

const std::vector<ProviderRegistration>& providerRegistry() {
    static const std::vector<ProviderRegistration> registry = {
        {codexDescriptor(), make<CodexUsageProvider>, {.read = readSavedCodexRun}},
        {claudeDescriptor(),
         makeClaude,
         {.read = [](const SavedRun& run, const Machine&) { return readSavedClaudeRun(run); },
          .heedsEnd = true}},
        {antigravityDescriptor(),
         make<AntigravityUsageProvider>,
         {.read = readSavedAntigravityRun, .heedsEnd = true, .heedsLog = true}},
    };
    return registry;
}

const ProviderRegistration* providerRegistration(const AgentProviderID& id) {
    const auto& registry = providerRegistry();
    const auto found = std::find_if(registry.begin(), registry.end(),
                                    [&](const auto& entry) { return entry.descriptor.id == id; });
    return found == registry.end() ? nullptr : &*found;
}

const ProviderDescriptor* providerDescriptor(const AgentProviderID& id) {
    const ProviderRegistration* const registration = providerRegistration(id);
    return registration ? &registration->descriptor : nullptr;
}

WayOut wayOutOf(const AgentProviderID& agent, UsageProviderError::Kind failure) {
    if (const ProviderDescriptor* descriptor = providerDescriptor(agent)) {
        const auto own = descriptor->waysOut.find(failure);
        if (own != descriptor->waysOut.end()) {
            return own->second;
        }
    }
    return failure == Failure::executableMissing ? WayOut::install : WayOut::readAgain;
}

} // namespace vellmark
