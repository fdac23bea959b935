#include "platform/RegularFile.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <system_error>

namespace vellmark::tests {
namespace {

TEST(RegularFile, IsReadUpToTheLimitAlsoThroughALink) {
    const TemporaryDirectory directory;
    const auto file = directory.write("plain", "0123456789");
    fs::create_symlink(file, directory / "link");
    std::error_code error;
    EXPECT_EQ(readRegularFile(file, error, 100), "0123456789");
    EXPECT_EQ(readRegularFile(directory / "link", error, 4), "0123");
    EXPECT_FALSE(error);
}

TEST(RegularFile, WhatIsNoFileHoldsNobodyUp) {
    const TemporaryDirectory directory;
    ASSERT_EQ(::mkfifo((directory / "fifo").c_str(), 0600), 0);
    fs::create_symlink(directory / "fifo", directory / "link");
    for (const fs::path& path : {directory / "fifo", directory / "link", directory.path(),
                                 fs::path("/dev/zero"), fs::path("/dev/tty")}) {
        std::error_code error;
        EXPECT_EQ(readRegularFile(path, error, 100), std::nullopt) << path;
        EXPECT_EQ(error, notRegularFile()) << path;
    }
    std::error_code error;
    EXPECT_EQ(readRegularFile(directory / "missing", error, 100), std::nullopt);
    EXPECT_EQ(error, std::errc::no_such_file_or_directory);
}

} // namespace
} // namespace vellmark::tests
