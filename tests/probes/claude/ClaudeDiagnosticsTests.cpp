#include "probes/claude/ClaudeDiagnostics.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

namespace vellmark::tests {
namespace {

TEST(ClaudeDiagnostics, KeepThePageWithoutThePerson) {
    const std::pair<const char*, const char*> cases[] = {
        {"  Email: name@example.org\r\n", "Email: <redacted>"},
        {"ORGANIZATION: Example Ltd", "Organization: <redacted>"},
        {"Session ID: 3f6b", "Session ID: <redacted>"},
        {"session name:x", "Session name: <redacted>"},
        {"cwd: /home/someone/secret", "cwd: <redacted>"},
        {"Login method: Claude Max Account", "Login method: <redacted>"},
        {"Emails sent: 3", "Emails sent: 3"},
        {"write to some.one+tag@mail.example.co.uk or b@c.de.",
         "write to <redacted> or <redacted>."},
        {"in /home/someone/work and /home/someone", "in ~/work and ~"},
        {"a\rOrganization: Example Ltd\rb", "a\nOrganization: <redacted>\nb"},
        {"API error 401\r\nAuthorization: Bearer abc\r\n",
         "API error 401\nAuthorization: Bearer <redacted>"},
        {"Current session\r\n\r\n54% used\r\n", "Current session\n54% used"},
    };
    for (const auto& [screen, expected] : cases) {
        EXPECT_EQ(redactedClaudeScreen(screen, "/home/someone"), expected);
    }
}

TEST(ClaudeDiagnostics, KeepTheLastCharacters) {
    std::string screen = "the beginning\n";
    for (int line = 0; line < 20000; ++line) {
        screen += "ü line " + std::to_string(line) + "\n";
    }
    const std::string kept = redactedClaudeScreen(screen, "/home/someone");
    EXPECT_TRUE(kept.ends_with("line 19999"));
    EXPECT_GT(kept.size(), 12000u) << "umlauts have two bytes";
    EXPECT_LT(kept.size(), 13500u);
}

TEST(ClaudeDiagnostics, AreReadableByTheOwnerAlone) {
    const TemporaryDirectory directory;
    const auto file = writeClaudeDiagnostics("Email: a@b.ch\nx", "/home/someone",
                                             directory / "Vellmark/Diagnostics", "last.txt");
    ASSERT_EQ(file, directory / "Vellmark/Diagnostics/last.txt");
    EXPECT_EQ(std::filesystem::status(*file).permissions(), std::filesystem::perms(0600));
    EXPECT_EQ(contentOf(*file), "Email: <redacted>\nx");
}

} // namespace
} // namespace vellmark::tests
