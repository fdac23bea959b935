#include "cli/NearestWord.h"
#include "cli/StorageNews.h"
#include "cli/Subcommands.h"
#include "cli/Table.h"
#include "cli/WrongArguments.h"
#include "platform/Preferences.h"
#include "presentation/LaunchAtLoginController.h"
#include "presentation/SettingsCatalog.h"
#include "text/BoundedJSON.h"
#include "text/TerminalText.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace vellmark {
namespace {

/// Lists the settings, tells one, or changes it. A running program takes the change over.
class SettingsCommand final : public Subcommand {
public:
    std::string name() const override { return "settings"; }
    std::string summaryKey() const override { return "cli.settings.summary"; }
    std::string detailKey() const override { return "cli.settings.detail"; }

    void declare(CommandOptions& options) override {
        options.optionalPositional("KEY", key_, "cli.settings.key");
        options.optionalPositional("VALUE", value_, "cli.settings.value");
        options.flag("--reset", reset_, "cli.settings.reset");
        options.flag("--json", json_, "cli.option.json");
    }

    bool startsChildren() const override { return false; }

    int run(const CommandContext& context) override {
        if (reset_ && value_) {
            throw WrongArguments("cli.error.noEffect", "VALUE", "--reset");
        }
        const auto preferences = makePreferences(context.machine);
        reportUnreadable(*preferences, context);
        LaunchAtLoginController launchAtLogin(*preferences, makeLoginItem(context.machine));
        SettingsCatalog catalog(*preferences, context.machine, launchAtLogin);
        const SettingItem* const item = key_ ? &find(*key_, catalog) : nullptr;
        if (reset_ || value_) {
            change(catalog, item);
            if (!isStored(*preferences, context)) {
                return ExitStatus::failed;
            }
        }
        if (json_) {
            writeJSON(catalog, item, context);
        } else if (item == nullptr) {
            writeTable(catalog, context);
        } else if (value_ || reset_) {
            context.output.write(meaning(*item, catalog, context.words) + "\n");
        } else {
            context.output.write(singleLine(catalog.value(*item)) + "\n");
        }
        return ExitStatus::done;
    }

private:
    static const SettingItem& find(const std::string& key, const SettingsCatalog& catalog) {
        if (const SettingItem* const item = catalog.find(key)) {
            return *item;
        }
        std::vector<std::string> names;
        std::string all;
        for (const SettingItem& item : catalog.items()) {
            names.push_back(item.name);
            all += (all.empty() ? "" : ", ") + item.name;
        }
        const std::string near = nearestWord(key, names);
        throw near.empty() ? WrongArguments("cli.settings.unknown", singleLine(key), all)
                           : WrongArguments("cli.settings.unknown.near", singleLine(key), near);
    }

    void change(SettingsCatalog& catalog, const SettingItem* item) const {
        if (item == nullptr) {
            catalog.resetAll();
        } else if (const auto refusal =
                       reset_ ? catalog.reset(*item) : catalog.set(*item, *value_)) {
            throw WrongArguments(refusal->key, refusal->asked, refusal->detail);
        }
    }

    static bool isStored(const Preferences& preferences, const CommandContext& context) {
        const auto error = preferences.writeError();
        if (error) {
            context.report(context.words.format("cli.settings.unwritable",
                                                {systemErrorText(*error, context.words)}));
        }
        return !error;
    }

    static JSON toJSON(const SettingItem& item, const SettingsCatalog& catalog) {
        JSON entry{{"key", item.name},
                   {"value", catalog.value(item)},
                   {"default", catalog.defaultValue(item)}};
        if (!item.values.empty()) {
            entry["allowed"] = item.values;
        }
        if (item.agent) {
            entry["agent"] = item.agent->rawValue;
        }
        return entry;
    }

    static void writeJSON(const SettingsCatalog& catalog, const SettingItem* item,
                          const CommandContext& context) {
        JSON document = JSON::array();
        for (const SettingItem& each : catalog.items()) {
            document.push_back(toJSON(each, catalog));
        }
        context.output.writeData(serialized(item ? toJSON(*item, catalog) : document) + "\n");
    }

    /// "Language: English".
    static std::string meaning(const SettingItem& item, const SettingsCatalog& catalog,
                               const Localization& words) {
        return words.format("cli.settings.meaning",
                            {catalog.title(item, words), catalog.valueText(item, words)});
    }

    static void writeTable(const SettingsCatalog& catalog, const CommandContext& context) {
        const auto word = [&](const char* key) { return context.words.text(key); };
        Table table({{word("cli.settings.column.key")},
                     {word("cli.settings.column.value")},
                     {.title = word("cli.settings.column.meaning"), .isDispensable = true}});
        for (const SettingItem& item : catalog.items()) {
            const std::string value = catalog.value(item);
            const bool isDefault = value == catalog.defaultValue(item);
            table.addRow({{item.name, TextStyle::strong},
                          {singleLine(value), isDefault ? TextStyle::dim : TextStyle::plain},
                          {meaning(item, catalog, context.words)}});
        }
        context.output.write(table.text(context.output));
    }

    std::optional<std::string> key_;
    std::optional<std::string> value_;
    bool reset_ = false;
    bool json_ = false;
};

} // namespace

std::unique_ptr<Subcommand> makeSettingsCommand() {
    return std::make_unique<SettingsCommand>();
}

} // namespace vellmark
