#pragma once

#include "cli/TerminalOutput.h"
#include "presentation/AgentBlockContent.h"
#include "text/Localization.h"

#include <cstddef>
#include <string>
#include <vector>

namespace vellmark {

/// How something in that state looks.
TextStyle styleOf(UsageHealth health);

/// The agents with their windows as text, the same values as the desktop application shows: per
/// agent a head line, then a line a window: its label, a bar of what is left with a mark where an
/// even pace would be, what is left in figures, and the reset. Where a line is too narrow, the bar
/// gives way, then the reset goes to a line of its own.
class UsageView {
public:
    /// `output` decides on looks and width.
    UsageView(const TerminalOutput& output, const Localization& words);

    std::string text(const std::vector<AgentBlockContent>& agents) const;

private:
    /// Widths of the columns, the same for all agents.
    struct Layout {
        std::size_t width = 0;
        std::size_t label = 0;
        std::size_t bar = 0;
        std::size_t value = 0;
        bool resetOnOwnLine = false;
    };

    Layout layoutFor(const std::vector<AgentBlockContent>& agents) const;
    std::string head(const AgentBlockContent& agent, const Layout& layout) const;
    std::string row(const UsageRowContent& row, const Layout& layout) const;
    std::string balance(const BalanceRowContent& balance, const Layout& layout) const;
    std::string failure(const AgentBlockContent& agent, const Layout& layout) const;
    std::string bar(const UsageBarContent& bar, std::size_t width) const;
    /// `text` in lines that begin `indent` columns from the left.
    std::string paragraph(const std::string& text, std::size_t indent, TextStyle style,
                          const Layout& layout) const;

    const TerminalOutput& output_;
    const Localization& words_;
};

} // namespace vellmark
