#pragma once

#include "cli/TerminalOutput.h"
#include "presentation/AgentBlockContent.h"
#include "text/Localization.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vellmark {

/// How a mark of something in that state looks. Sentences keep the terminal's own colour: not every
/// colour can be read on every ground.
TextStyle styleOf(UsageHealth health);

/// The agents with their windows as text, the same values as the desktop application shows: per
/// agent a head line, then a line a window: its label, a bar of what is left with a mark where an
/// even pace would be, what is left in figures, and the reset. The bar takes the room that is
/// there. Where a line is too narrow, the reset goes to a line of its own, then the label does.
class UsageView {
public:
    /// `output` decides on looks and width.
    UsageView(const TerminalOutput& output, const Localization& words);

    std::string text(const std::vector<AgentBlockContent>& agents) const;
    /// The same, the lines of each agent for themselves.
    std::vector<std::vector<std::string>> lines(const std::vector<AgentBlockContent>& agents) const;

private:
    enum class Form {
        line,       ///< everything about a window on one line
        resetBelow, ///< the reset below the bar
        labelAbove, ///< and the label above it
    };
    /// Widths of the columns, the same for all agents.
    struct Layout {
        std::size_t width = 0;
        std::size_t label = 0;
        std::size_t bar = 0;
        std::size_t value = 0;
        Form form = Form::line;
        /// Where bars, resets and forecasts begin.
        std::size_t barColumn() const;
    };

    Layout layoutFor(const std::vector<AgentBlockContent>& agents) const;
    std::string block(const AgentBlockContent& agent, const Layout& layout) const;
    std::string head(const AgentBlockContent& agent, const Layout& layout) const;
    std::string row(const UsageRowContent& row, const Layout& layout) const;
    /// The label and the blanks after it, or on a line of its own.
    std::string label(const std::string& text, const Layout& layout,
                      TextStyle style = TextStyle::plain) const;
    std::string balance(const BalanceRowContent& balance, const Layout& layout) const;
    std::string failure(const AgentBlockContent& agent, const Layout& layout) const;
    std::string bar(const UsageBarContent& bar, std::size_t width) const;
    /// `text` in lines that begin `indent` columns from the left.
    std::string paragraph(const std::string& text, std::size_t indent, TextStyle style,
                          const Layout& layout) const;
    /// The same after a mark in the colour of `tone`.
    std::string warning(const std::string& text, std::size_t indent, UsageHealth tone,
                        const Layout& layout) const;

    const TerminalOutput& output_;
    const Localization& words_;
};

} // namespace vellmark
