#include "cli/CommandTest.h"

namespace vellmark::tests {
namespace {

TEST(Arguments, WrongOnesSayWhatAndWhereToReadMoreOnTheErrorStreamAlone) {
    const std::tuple<std::vector<std::string>, const char*, const char*> cases[] = {
        {{"usgae"}, "no command \"usgae\". Did you mean \"usage\"?", "vellmark --help"},
        {{"help", "statsu"}, "Did you mean \"status\"?", "vellmark --help"},
        {{"--colour=never"}, "\"--colour\". Did you mean \"--color\"?", "usage --help"},
        {{"--color", "blue", "help"}, "\"blue\"", "vellmark --help"},
        {{"--demo", "--sandbox", "/tmp", "usage"}, "\"--sandbox\" has no effect", "--help"},
        {{"--sandbox", "", "agents"}, "Wrong number of values for \"--sandbox\"", "--help"},
        {{"--demo", "redact"}, "\"--demo\" has no effect together with \"redact\"", "--help"},
        {{"status", "--cached", "--snapshots", "-"}, "\"--cached\" has no effect", "status"},
        {{"log", "--follow", "--json"}, "\"--follow\" has no effect", "log --help"},
        {{"--agent"}, "\"--agent\"", "vellmark usage --help"},
        {{"usage", "--agent", "gemini"}, "choose from: codex, claude, antigravity", "usage --help"},
        {{"agents", "--agent", "codex"}, "\"--agent\"", "vellmark agents --help"},
        {{"inspect"}, "AGENT", "vellmark inspect --help"},
        {{"inspect", "codex", "--now", "yesterday"}, "--now: \"yesterday\"", "inspect --help"},
        {{"inspect", "claude", "--exit-status", "2x"}, "\"2x\"", "inspect --help"},
        {{"--language", "ar"}, "\"ar\"; choose from: de, en, fr, it, es.", "vellmark --help"},
        {{"usage", "\x1b[31mred"}, "Unknown argument \"red\"", "usage --help"},
    };
    for (const auto& [arguments, message, hint] : cases) {
        const ProgramResult result = ProgramRun::of({.arguments = arguments});
        EXPECT_EQ(result.status, 2) << message;
        EXPECT_EQ(result.output, "") << message;
        EXPECT_THAT(result.errors, AllOf(HasSubstr(message), HasSubstr(hint)));
    }
}

TEST(Arguments, LanguageIsAskedForElseTheUsersElseEnglish) {
    const auto helpIn = [](const char* locale, std::vector<std::string> arguments) {
        return ProgramRun::of(
                   {.arguments = std::move(arguments), .environment = {{"LANG", locale}}})
            .output;
    };
    EXPECT_THAT(helpIn("de_CH.UTF-8", {"--help"}), HasSubstr("Befehle:"));
    EXPECT_THAT(helpIn("pt_BR.UTF-8", {"--help"}), HasSubstr("Commands:"));
    EXPECT_THAT(helpIn("fr_FR.UTF-8", {"--help", "--language", "it"}), HasSubstr("Comandi:"));
    EXPECT_THAT(helpIn("en_US", {"usage", "--help", "--language=de"}), HasSubstr("Aufruf:"));
}

using ChosenLanguage = CommandTest;

TEST_F(ChosenLanguage, IsThatOfTheSettingsUnlessAnotherIsAskedFor) {
    EXPECT_EQ(run({"log"}).errors, "No entries.\n");
    setPreferences(R"({"AppLanguage":"fr"})");
    EXPECT_EQ(run({"log"}).errors, "Aucune entrée.\n");
    EXPECT_EQ(run({"log", "--language", "it"}).errors, "Nessuna voce.\n");
    setPreferences(R"({"AppLanguage":"ar"})");
    EXPECT_EQ(run({"log"}).errors, "No entries.\n");
    // For help no sandbox is made; it is that of the user's own settings.
    const TemporaryDirectory directory;
    directory.write("Vellmark/preferences.json", R"({"AppLanguage":"es"})");
    const ProgramResult help = ProgramRun::of(
        {.arguments = {"help"}, .environment = {{"XDG_CONFIG_HOME", directory.path().string()}}});
    EXPECT_THAT(help.output, HasSubstr("Comandos:"));
}

TEST(Arguments, VersionAndHelpAreWrittenOrTheFailureIsTold) {
    for (const char* option : {"--version", "-V"}) {
        EXPECT_THAT(ProgramRun::of({.arguments = {option}}).output,
                    testing::MatchesRegex("vellmark [0-9.]+\n"));
    }
    EXPECT_EQ(ProgramRun::of({.arguments = {"help", "log"}}).output,
              ProgramRun::of({.arguments = {"log", "--help"}}).output);
    const ProgramResult full = ProgramRun::of({.arguments = {"--help"}, .outputPath = "/dev/full"});
    EXPECT_EQ(full.status, 1);
    EXPECT_THAT(full.errors, HasSubstr("Cannot write the output"));
    const ProgramResult closed = ProgramRun::of({.arguments = {"--version"}, .closed = {1}});
    EXPECT_EQ(closed.status, 1);
    EXPECT_THAT(closed.errors, HasSubstr("Cannot write the output"));
}

} // namespace
} // namespace vellmark::tests
