#pragma once

#include "cli/CommandOptions.h"
#include "presentation/StatusFormats.h"

#include <optional>
#include <string>
#include <vector>

namespace vellmark {

/// In which form a status is printed, and of what: the arguments that "status" and "watch" share.
class StatusForm {
public:
    void declare(CommandOptions& options);
    /// The values that an option of these may have; see Subcommand.
    static std::vector<std::string> choices(const std::string& name);
    /// A form was asked for.
    bool isGiven() const { return format_ || agent_ || window_ || reader_; }
    /// Makes sense of the values; throws WrongArguments. `asJSON`: another argument asks for that.
    void understand(bool asJSON);

    StatusFormat format() const { return kind_; }
    /// Text for people, as a terminal wraps and colours it.
    bool isPlainText() const { return kind_ == StatusFormat::text && !template_; }
    const StatusChoice& choice() const { return choice_; }

    std::string output(const StatusReport& report) const;
    /// For a reader of lines.
    std::string streamHead() const;
    std::string streamOutput(const StatusReport& report) const;

private:
    std::optional<std::string> format_;
    std::optional<std::string> reader_;
    std::optional<std::string> agent_;
    std::optional<std::string> window_;

    StatusFormat kind_ = StatusFormat::text;
    std::optional<StatusTemplate> template_;
    StatusChoice choice_;
};

} // namespace vellmark
