#include "cli/CommandLine.h"
#include "cli/Completion.h"
#include "cli/Subcommands.h"
#include "model/UsageTexts.h"
#include "platform/LoginItem.h"
#include "platform/Preferences.h"
#include "platform/WholeFile.h"
#include "presentation/AgentBlockContent.h"
#include "presentation/LanguageManager.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/SettingsCatalog.h"
#include "probes/ProviderRegistry.h"
#include "store/LastSnapshots.h"
#include "text/TerminalText.h"

#include <algorithm>
#include <unistd.h>

namespace vellmark {
namespace {

/// Longer lines nobody types.
constexpr std::size_t longestLine = std::size_t{1} << 20;

std::vector<std::string> typedWords(std::string_view text) {
    std::vector<std::string> words;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find('\0'), text.size());
        words.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return words;
}

std::vector<Completions::Word> agents(const Localization& words) {
    std::vector<Completions::Word> all;
    for (const ProviderRegistration& registration : providerRegistry()) {
        const AgentProviderID& id = registration.descriptor.id;
        all.push_back({id.rawValue, agentName(id, words)});
    }
    return all;
}

/// Those that were read last.
std::vector<Completions::Word> windows(const std::optional<std::string>& agent,
                                       const CommandContext& context) {
    std::vector<Completions::Word> all;
    for (const auto& reading : LastSnapshots(context.machine.lastSnapshotsFile()).read()) {
        if (agent && reading.id.rawValue != *agent) {
            continue;
        }
        for (const UsageWindow& window : reading.windows) {
            const bool isNew =
                std::ranges::find(all, window.id, &Completions::Word::word) == all.end();
            // A shell would break it into lines.
            if (isNew && singleLine(window.id) == window.id) {
                all.push_back({window.id, agentName(reading.id, context.words) + " · " +
                                              windowLabel(window, context.words)});
            }
        }
    }
    return all;
}

Completions valuesOf(const SettingItem& item, const Localization& words) {
    Completions values;
    const auto add = [&](const std::string& word) { values.words.push_back({word, {}}); };
    switch (item.kind) {
    case SettingItem::Kind::choice:
    case SettingItem::Kind::way:
        std::ranges::for_each(item.values, add);
        break;
    case SettingItem::Kind::toggle:
    case SettingItem::Kind::loginItem:
        add("on");
        add("off");
        break;
    case SettingItem::Kind::agents:
        values.words = agents(words);
        add("none");
        break;
    case SettingItem::Kind::order:
        values.words = agents(words);
        break;
    case SettingItem::Kind::executable:
        add("automatic");
        values.files = Completions::Files::all;
        break;
    case SettingItem::Kind::minutes:
        add("automatic");
        break;
    case SettingItem::Kind::timeOfDay:
        break;
    }
    return values;
}

/// Answers the completion scripts: what may be typed behind the words on standard input. Fast, for
/// it runs at each key.
class CompleteCommand final : public Subcommand {
public:
    std::string name() const override { return "complete"; }
    std::string summaryKey() const override { return "cli.completions.summary"; }
    void declare(CommandOptions& /*options*/) override {}
    bool isHidden() const override { return true; }
    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        std::error_code error;
        const auto text = readToEnd(STDIN_FILENO, error, longestLine);
        if (!text) {
            return ExitStatus::failed;
        }
        const auto preferences = makePreferences(context.machine);
        LaunchAtLoginController launchAtLogin(*preferences, makeLoginItem(context.machine));
        const SettingsCatalog catalog(*preferences, context.machine, launchAtLogin);
        const CompletionSources sources{
            .agents = [&] { return agents(context.words); },
            .windows = [&](const auto& agent) { return windows(agent, context); },
            .settings =
                [&] {
                    std::vector<Completions::Word> keys;
                    for (const SettingItem& item : catalog.items()) {
                        keys.push_back({item.name, catalog.title(item, context.words)});
                    }
                    return keys;
                },
            .settingValues =
                [&](const std::string& key) {
                    const SettingItem* const item = catalog.find(key);
                    return item ? valuesOf(*item, context.words) : Completions();
                },
            .languages =
                [] {
                    std::vector<Completions::Word> all;
                    for (const std::string_view code : Localization::languages()) {
                        all.push_back({std::string(code), {}});
                    }
                    return all;
                }};
        write(completionsOf(describeProgram(allSubcommands(), context.words), typedWords(*text),
                            sources),
              context.output);
        return ExitStatus::done;
    }

private:
    static void write(const Completions& completions, TerminalOutput& output) {
        std::string lines;
        for (const auto& [word, text] : completions.words) {
            lines += word + "\t" + singleLine(text) + "\n";
        }
        switch (completions.files) {
        case Completions::Files::none:
            break;
        case Completions::Files::all:
            lines += "\tfiles\n";
            break;
        case Completions::Files::directories:
            lines += "\tdirectories\n";
            break;
        }
        output.writeData(lines);
    }
};

} // namespace

std::unique_ptr<Subcommand> makeCompleteCommand() {
    return std::make_unique<CompleteCommand>();
}

} // namespace vellmark
