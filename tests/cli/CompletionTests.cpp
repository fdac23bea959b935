#include "cli/CommandTest.h"
#include "model/UsageJSON.h"
#include "presentation/UsageStateMaker.h"
#include "support/ProjectDirectories.h"
#include "text/TerminalText.h"

#include <cstdlib>

namespace vellmark::tests {
namespace {

/// A machine on which two agents were read.
class Completion : public CommandTest {
protected:
    Completion() {
        writeFile(
            support / "last-snapshots.json",
            snapshotsDocument({live(AgentProviderID::codex(), {window("session", 1, 300, 60)}),
                               live(AgentProviderID::antigravity(),
                                    {window("pool:Gemini Models|5h", 93, 300, 86)})}));
        writeFile(folder / "notes of mine.txt", "");
    }

    /// The words that may follow, as "word\tmeaning".
    std::vector<std::string> lines(const std::vector<std::string>& typed) {
        std::string input;
        for (const std::string& word : typed) {
            input += word + '\0';
        }
        const std::string output = run({"complete"}, input).output;
        const auto all = nonEmptyLines(output);
        return {all.begin(), all.end()};
    }
    std::vector<std::string> words(const std::vector<std::string>& typed) {
        std::vector<std::string> all = lines(typed);
        for (std::string& line : all) {
            line = line.substr(0, line.find('\t'));
        }
        return all;
    }

    bool has(const std::string& program) const {
        return std::system(("command -v " + program + " >/dev/null 2>&1").c_str()) == 0;
    }
    /// Runs a script in a shell, with a "vellmark" that looks at this machine first on the path,
    /// and its own completions loaded from "completions". Returns what it printed.
    std::string inShell(const std::string& shell, const std::string& commands) {
        const std::string machine = sandbox.machine().home.parent_path().string();
        writeFile(folder / "bin/vellmark", "#!/bin/sh\nexec '" + builtProgram("vellmark") +
                                               "' --sandbox '" + machine + "' \"$@\"\n");
        fs::permissions(folder / "bin/vellmark", fs::perms(0700));
        writeFile(folder / "completions", run({"completions", shell}).output);
        writeFile(folder / "commands", commands);
        const int status = std::system(
            ("cd '" + folder.string() + "' && env -i HOME='" + folder.string() +
             "' TERM=xterm LANG=C.UTF-8 PATH='" + (folder / "bin").string() +
             "':/usr/local/bin:/usr/bin:/bin timeout 60 " + shell + " commands >output 2>&1")
                .c_str());
        EXPECT_EQ(status, 0);
        return contentOf(folder / "output");
    }

    const TemporaryDirectory directory;
    const fs::path folder = directory.path();
};

TEST_F(Completion, KnowsEveryPlaceOfTheCommandLine) {
    EXPECT_THAT(lines({"lo"}), Contains(StartsWith("log\tThe activity log")));
    EXPECT_THAT(words({""}), AllOf(Contains("usage"), Contains("help"), Not(Contains("complete"))));
    EXPECT_THAT(words({"log", "-"}),
                AllOf(Contains("--level"), Contains("-f"), Not(Contains("--by"))));
    EXPECT_THAT(words({"metrics", "--"}), AllOf(Contains("--language"), Not(Contains("--demo"))));
    EXPECT_EQ(words({"log", "--level", ""}), (std::vector<std::string>{"info", "notice", "error"}));
    EXPECT_THAT(words({"--"}), Contains("--by")) << "usage is meant without a command";
    EXPECT_THAT(words({"log", "-f", "--"}), Not(Contains("--follow"))) << "given already";
    EXPECT_THAT(words({"usage", "--agent", "codex", "--"}), Contains("--agent")) << "may repeat";
    EXPECT_THAT(words({"history", "--format=c"}), Contains("--format=csv"));
    EXPECT_THAT(lines({"--language", "de", "agents", "enable", "codex", ""}),
                ElementsAre("claude\tClaude Code", "antigravity\tAntigravity"));
    EXPECT_EQ(words({"settings", "first-figure", ""}), (std::vector<std::string>{"left", "used"}));
    EXPECT_EQ(lines({"settings", "claude-path", ""}),
              (std::vector<std::string>{"automatic\t", "\tfiles"}));
    EXPECT_EQ(lines({"man", "--directory", ""}), std::vector<std::string>{"\tdirectories"});
    EXPECT_THAT(words({"help", ""}), Contains("metrics"));
    EXPECT_EQ(words({"history", "--window", ""}),
              (std::vector<std::string>{"session", "pool:Gemini Models|5h"}));
    EXPECT_EQ(words({"history", "--agent", "codex", "--window", ""}),
              std::vector<std::string>{"session"});
    EXPECT_THAT(words({"nonsense", ""}), IsEmpty());
    for (const auto& strange : {std::vector<std::string>{},
                                {"history", "export", "x", ""},
                                {"--json", "=", ""},
                                {"log", "--json=x"},
                                {"nonsense", "--nonsense=", "--nonsense="},
                                {"settings", "no", ""}}) {
        EXPECT_THAT(lines(strange), Each(Not(StartsWith("\t"))));
    }
}

TEST_F(Completion, WorksInBash) {
    const std::string output = inShell("bash", R"(
source ./completions
try() {
    COMP_LINE="$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); COMP_POINT=${#COMP_LINE}
    _vellmark; printf '<%s>' "${COMPREPLY[@]}"; echo
}
try 'vellmark hist' vellmark hist
try 'vellmark history --format=c' vellmark history --format = c
try 'vellmark history --window pool:G' vellmark history --window pool : G
try "vellmark history --window 'po" vellmark history --window "'po"
try 'vellmark report -o no' vellmark report -o no
)");
    EXPECT_EQ(output, "<history>\n<csv>\n<Gemini\\ Models\\|5h>\n<pool:Gemini Models|5h>\n"
                      "<notes of mine.txt>\n");
}

TEST_F(Completion, WorksInFish) {
    if (!has("fish")) {
        GTEST_SKIP() << "fish is not installed";
    }
    const std::string output = inShell("fish", R"(
source ./completions
for line in 'vellmark hist' 'vellmark history --format=c' 'vellmark history --window po' \
    'vellmark report -o no' 'vellmark log --level '
    complete -C $line
end
)");
    EXPECT_EQ(output, "history\tThe recorded history\n--format=csv\n"
                      "pool:Gemini Models|5h\tAntigravity · Gemini models · 5 hours\n"
                      "notes of mine.txt\ninfo\nnotice\nerror\n");
}

/// zsh completes at its own prompt only, so a terminal types there. What then stands in the line is
/// told by a command put before it.
TEST_F(Completion, WorksInZsh) {
    if (!has("zsh") || !has("expect")) {
        GTEST_SKIP() << "zsh or expect is not installed";
    }
    writeFile(folder / "functions/_vellmark", run({"completions", "zsh"}).output);
    const std::string output = inShell("expect", R"expect(
set timeout 40
spawn -noecho zsh -f -i
send "PS1='READY> '; fpath=(\$PWD/functions \$fpath); autoload -Uz compinit; compinit -u -D; unsetopt PROMPT_SP\r"
foreach typed {
    "vellmark hist" "vellmark history --format=c" "vellmark history --window po"
    "vellmark report -o no"
} {
    expect "READY> " {} timeout { exit 4 }
    send "$typed\t\001print -r -- 'LINE:' \005\r"
    expect -re "\nLINE: (\[^\r]*)\r" { puts "\nGOT $expect_out(1,string)" } timeout { exit 6 }
}
send "exit\r"
expect eof
)expect");
    EXPECT_THAT(output, HasSubstr("GOT vellmark history\n"));
    EXPECT_THAT(output, HasSubstr("GOT vellmark history --format=csv\n"));
    EXPECT_THAT(output, HasSubstr("GOT vellmark history --window pool:Gemini Models|5h\n"));
    EXPECT_THAT(output, HasSubstr("GOT vellmark report -o notes of mine.txt\n"));
}

TEST_F(Completion, ManualPagesAreWithoutFaultInEveryLanguage) {
    for (const std::string_view code : Localization::languages()) {
        const std::string language(code);
        const auto pages = folder / language;
        fs::create_directories(pages);
        EXPECT_EQ(run({"man", "--directory", pages.string(), "--language", language}).status, 0);
        for (const char* page : {"vellmark.1", "vellmark-setup-script.1", "vellmark-desktop.1"}) {
            EXPECT_TRUE(fs::exists(pages / page)) << page;
        }
        EXPECT_FALSE(fs::exists(pages / "vellmark-complete.1"));
        if (has("mandoc")) {
            const std::string report = (folder / "report").string();
            EXPECT_EQ(std::system(("mandoc -Tlint -Wwarning '" + pages.string() + "'/*.1 >'" +
                                   report + "' 2>&1")
                                      .c_str()),
                      0)
                << contentOf(report);
        }
    }
    const std::string page = run({"man", "history"}).output;
    EXPECT_THAT(page, AllOf(HasSubstr(".TH VELLMARK-HISTORY 1 "),
                            HasSubstr("\\fB\\-\\-format\\fR \\fIFORMAT\\fR")));
    EXPECT_EQ(run({"man", "complete"}).status, 2);
    EXPECT_EQ(run({"completions", "powershell"}).status, 2);
}

} // namespace
} // namespace vellmark::tests
