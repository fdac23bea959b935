#include "probes/VersionNumber.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellmark {
namespace {

TEST(VersionNumber, IsFoundInWhatAToolSays) {
    const std::pair<const char*, std::optional<VersionNumber>> cases[] = {
        {"1.1.11", VersionNumber{{1, 1, 11}}},
        {"agy version v1.1.9-beta.2 (2026.1)", VersionNumber{{1, 1, 9}}},
        {"2.1.330 (Claude Code)", VersionNumber{{2, 1, 330}}},
        {"codex-cli 0.169", VersionNumber{{0, 169, 0}}},
        {"1.2.3.4", VersionNumber{{1, 2, 3}}},
        {"7", std::nullopt},
        {"1234567.1", std::nullopt},
        {"1..2", std::nullopt},
        {"", std::nullopt},
    };
    for (const auto& [text, expected] : cases) {
        EXPECT_EQ(VersionNumber::parse(text), expected) << text;
    }
    EXPECT_LT(*VersionNumber::parse("1.1.9"), *VersionNumber::parse("1.1.11"));
    EXPECT_EQ(VersionNumber::parse("0.169")->text(), "0.169.0");
}

} // namespace
} // namespace vellmark
