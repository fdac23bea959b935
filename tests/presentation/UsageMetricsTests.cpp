#include "presentation/UsageMetrics.h"
#include "presentation/UsageStateMaker.h"

#include <gmock/gmock.h>

namespace vellmark::tests {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(UsageMetrics, TellWhatIsKnownAndNothingElse) {
    AgentUsageSnapshot claude =
        live(AgentProviderID::claude(),
             {window("session", 80, 300, 150), window("weekly", 104, 10'080, 2'580),
              window("gone", 10, 300, -5), windowWithoutReset("odd \"window\"\\\n", 12.5)});
    claude.plan = "Max 20x";
    claude.accountLabel = "me@example.org";
    AgentUsageSnapshot codex = live(AgentProviderID::codex(), {window("session", 1, 300, 60)});
    codex.updatedAt = noon - Seconds(3'601);
    UsageState state = stateOf({claude, codex});
    state.snapshots.emplace_back().id = AgentProviderID::antigravity();

    const std::string text = UsageMetrics::text(state, noon, false);
    EXPECT_THAT(
        text,
        AllOf(HasSubstr("vellmark_agent_info{agent=\"claude\",plan=\"Max 20x\"} 1.0\n"),
              HasSubstr("vellmark_up{agent=\"claude\"} 1.0\n"
                        "vellmark_up{agent=\"codex\"} 0.0\n"
                        "vellmark_up{agent=\"antigravity\"} 0.0\n"),
              HasSubstr("# TYPE vellmark_window_left_ratio gauge\n"
                        "# UNIT vellmark_window_left_ratio ratio\n"
                        "vellmark_window_left_ratio{agent=\"claude\",window=\"session\"} 0.2\n"
                        "vellmark_window_left_ratio{agent=\"claude\",window=\"weekly\"} 0.0\n"
                        "vellmark_window_left_ratio{agent=\"claude\","
                        "window=\"odd \\\"window\\\"\\\\"),
              HasSubstr("vellmark_window_used_ratio{agent=\"claude\",window=\"weekly\"} 1.04\n"),
              // 150 minutes after noon.
              HasSubstr("vellmark_window_reset_timestamp_seconds{agent=\"claude\","
                        "window=\"session\"} 1763655480.0\n"),
              // 80 % took 150 minutes: 37.5 to go.
              HasSubstr("vellmark_window_runs_out_timestamp_seconds{agent=\"claude\","
                        "window=\"session\"} 1763648730.0\n")));
    EXPECT_THAT(text, Not(HasSubstr("left_ratio{agent=\"claude\",window=\"gone\"}")))
        << "nobody knows what is left after a reset";
    EXPECT_THAT(text, HasSubstr("reset_timestamp_seconds{agent=\"claude\",window=\"gone\"}"));
    EXPECT_THAT(text, Not(HasSubstr("runs_out_timestamp_seconds{agent=\"codex\"")));
    EXPECT_THAT(text, Not(HasSubstr("last_read_timestamp_seconds{agent=\"antigravity\"")));
    EXPECT_THAT(text, AllOf(Not(HasSubstr("example.org")), testing::EndsWith("# EOF\n")));
    EXPECT_THAT(UsageMetrics::text(state, noon, true),
                HasSubstr("plan=\"Max 20x\",account=\"me@example.org\"} 1.0\n"));
}

} // namespace
} // namespace vellmark::tests
