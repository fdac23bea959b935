#pragma once

#include "cli/CommandDescription.h"

#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What may be typed next. All that is possible in this place, whatever the word begins with: the
/// shells choose from it, each in its own way.
struct Completions {
    struct Word {
        std::string word;
        /// What it means; may be empty.
        std::string text;

        bool operator==(const Word&) const = default;
    };
    /// Names of files, which the shell knows better.
    enum class Files { none, all, directories };

    std::vector<Word> words;
    Files files = Files::none;
};

/// What only this machine knows; asked when it is needed.
struct CompletionSources {
    std::function<std::vector<Completions::Word>()> agents;
    /// The windows of an agent, or of all.
    std::function<std::vector<Completions::Word>(const std::optional<std::string>& agent)> windows;
    std::function<std::vector<Completions::Word>()> settings;
    /// The values of a setting.
    std::function<Completions(const std::string& setting)> settingValues;
    std::function<std::vector<Completions::Word>()> languages;
};

/// `typed`: the words after the program's name, the last being the one that is typed (it may be
/// empty).
Completions completionsOf(const ProgramDescription& program, const std::vector<std::string>& typed,
                          const CompletionSources& sources);

} // namespace vellmark
