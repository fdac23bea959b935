#pragma once

#include "text/Localization.h"

#include <exception>
#include <string>

namespace vellmark {

/// The user asked for something that the program does not offer: exit status 2. Holds a key of
/// the string catalog and its arguments.
class WrongArguments : public std::exception {
public:
    explicit WrongArguments(std::string key, std::string first = {}, std::string second = {})
        : key_(std::move(key)), first_(std::move(first)), second_(std::move(second)) {}

    std::string message(const Localization& words) const {
        return words.format(key_, {first_, second_});
    }
    const char* what() const noexcept override { return key_.c_str(); }

private:
    std::string key_;
    std::string first_;
    std::string second_;
};

} // namespace vellmark
