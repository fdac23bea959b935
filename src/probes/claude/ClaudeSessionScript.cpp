#include "probes/claude/ClaudeSessionScript.h"

#include <string_view>
#include <utility>

namespace vellmark {

namespace {

// The CLI is started so that the session can do nothing but show screens. A status screen that is
// missed is not smoothed over: the line that prints the stamps fails then, and there is no timing
// line. "@name@" stands for one of the timings; the line breaks of the text are part of it.
constexpr std::string_view scriptTemplate = R"script(set timeout @stepTimeout@
log_user 1
set claude $env(VELLMARK_CLAUDE_PATH)
set have_session 0
set have_week 0
set marker 0
# A model window seen lately («Current week (Fable)») may arrive seconds after the main blocks: wait for it.
set expect_fable [expr {[info exists env(VELLMARK_EXPECT_FABLE)] && $env(VELLMARK_EXPECT_FABLE) == "1"}]
# Milliseconds since the start, reported at the end as one VELLMARK_TIMING line (printed, never sent).
set t0 [clock milliseconds]
array set stamps {}
proc stamp {name} { global t0 stamps; set stamps($name) [expr {[clock milliseconds] - $t0}] }
# After the last block the page counts as complete once nothing new arrives for 1 s, but never wait
# longer than the cap (a spinner would keep the output going).
proc settle {cap_ms quiet_s} {
    global timeout
    set saved $timeout
    set timeout $quiet_s
    set deadline [expr {[clock milliseconds] + $cap_ms}]
    expect {
        -re {.+} { if {[clock milliseconds] < $deadline} { exp_continue } }
        timeout {}
        eof {}
    }
    set timeout $saved
}
spawn -noecho $claude --ax-screen-reader --safe-mode --restricted --permission-mode dontAsk --tools ""
expect {
    -re {Enter y/n:} { send -- "y\r"; exp_continue }
    -re {\$} { stamp prompt; send -- "/status\r" }
    timeout { exit 124 }
    eof { exit 125 }
}
expect {
    -re {Login method:} { stamp status; after @statusPause@; send -- "\033"; after @statusEscapePause@; send -- "/usage\r" }
    timeout { send -- "\033"; after @missingStatusPause@; send -- "/usage\r" }
    eof { exit 125 }
}
expect {
    -re {Not logged in} { after @loggedOutPause@; send -- "/exit\r"; after @loggedOutExitPause@; exit 128 }
    -re {Usage credits|What's contributing to your limits usage} { set marker 1 }
    -re {Current session.{0,250}?[0-9]+%.{0,40}?used} { set have_session 1; if {!$have_week} { exp_continue } }
    -re {Current week \(all models\).{0,250}?[0-9]+%.{0,40}?used} { set have_week 1; if {!$have_session} { exp_continue } }
    timeout { exit 126 }
    eof { exit 127 }
}
stamp blocks
if {$expect_fable} {
    set saved $timeout
    set timeout @modelWindow@
    expect {
        -re {Current week \(Fable\).{0,250}?[0-9]+%.{0,40}?used} {}
        timeout {}
        eof {}
    }
    set timeout $saved
}
# Without a known end marker the page counts as complete after 2 s of silence (1 s cut the late model window off).
if {$marker} { settle @markedCap@ @markedQuiet@ } else { settle @unmarkedCap@ @unmarkedQuiet@ }
stamp quiet
puts "\nVELLMARK_TIMING $stamps(prompt) $stamps(status) $stamps(blocks) $stamps(quiet)"
send -- "\033"
after @leavePause@
send -- "/exit\r"
after @exitPause@
if {$marker} { exit 0 } else { exit 20 })script";

} // namespace

std::string claudeSessionScript(const ClaudeSessionTimings& timings) {
    const std::pair<std::string_view, int> values[] = {
        {"@stepTimeout@", timings.stepTimeoutSeconds},
        {"@statusPause@", timings.statusPauseMs},
        {"@statusEscapePause@", timings.statusEscapePauseMs},
        {"@missingStatusPause@", timings.missingStatusPauseMs},
        {"@loggedOutPause@", timings.loggedOutPauseMs},
        {"@loggedOutExitPause@", timings.loggedOutExitPauseMs},
        {"@modelWindow@", timings.modelWindowSeconds},
        {"@markedCap@", timings.markedCapMs},
        {"@markedQuiet@", timings.markedQuietSeconds},
        {"@unmarkedCap@", timings.unmarkedCapMs},
        {"@unmarkedQuiet@", timings.unmarkedQuietSeconds},
        {"@leavePause@", timings.leavePauseMs},
        {"@exitPause@", timings.exitPauseMs},
    };
    std::string script(scriptTemplate);
    for (const auto& [name, value] : values) {
        script.replace(script.find(name), name.size(), std::to_string(value));
    }
    return script;
}

} // namespace vellmark
