#pragma once

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// What a subcommand takes, declared to the argument parser. The places given must live until the
/// arguments are parsed. Help texts are keys of the string catalog; `placeholder` stands for the
/// value in the help ("SECONDS").
///
/// Values arrive as text: ArgumentValues.h makes numbers and instants of them, with a message in
/// the user's language when they are none.
class CommandOptions {
public:
    virtual ~CommandOptions() = default;
    virtual void flag(const std::string& name, bool& place, const std::string& helpKey) = 0;
    virtual void value(const std::string& name, std::optional<std::string>& place,
                       const std::string& placeholder, const std::string& helpKey) = 0;
    /// May be given several times.
    virtual void values(const std::string& name, std::vector<std::string>& places,
                        const std::string& placeholder, const std::string& helpKey) = 0;
    virtual void positional(const std::string& placeholder, std::string& place,
                            const std::string& helpKey) = 0;
    virtual void optionalPositional(const std::string& placeholder,
                                    std::optional<std::string>& place,
                                    const std::string& helpKey) = 0;
    /// Any number of them, also none; the last positional argument.
    virtual void optionalPositionals(const std::string& placeholder,
                                     std::vector<std::string>& places,
                                     const std::string& helpKey) = 0;
};

} // namespace vellmark
