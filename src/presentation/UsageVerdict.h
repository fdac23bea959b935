#pragma once

#include "store/UsageState.h"
#include "text/Localization.h"

#include <string>

namespace vellmark {

/// How agents are called: "Claude Code", or "Claude" where little room is.
enum class AgentNames { full, brief };

/// What is worst, in a few words: "Antigravity critical, Claude running low", or that everything
/// lasts; old figures with their age. Without agents or before the first reading it says so.
std::string verdictText(const UsageState& state, Instant now, const Localization& words,
                        AgentNames names = AgentNames::brief);

/// A line that has to fit, and what to say where it does not.
struct VerdictLine {
    std::string text;
    std::string briefText;
    bool operator==(const VerdictLine&) const = default;
};

/// The verdict and when it was read, or how many agents have been read so far: "Antigravity
/// critical, Claude running low · read at 2:46 PM", "Codex critical (34 min old) · as of 2:46 PM",
/// "2 of 2 agents unreadable · 34 min old". In brief only the worst of the verdict is named, the
/// other agents concerned are counted; the time stays.
VerdictLine verdictLine(const UsageState& state, Instant now, const Localization& words,
                        AgentNames names = AgentNames::brief);

/// The overall status in one sentence, with the agents concerned, as the tooltip and the log use
/// it.
std::string overallStatusText(const UsageState& state, Instant now, const Localization& words);

/// The worst health over the enabled agents; `unavailable` without any.
UsageHealth worstHealth(const UsageState& state, Instant now);

} // namespace vellmark
