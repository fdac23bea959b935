#include "process/PrivateTemporaryDirectory.h"
#include "support/TemporaryDirectory.h"

#include <gtest/gtest.h>

#include <chrono>
#include <sys/stat.h>
#include <utility>

namespace vellmark::tests {
namespace {

void makeOld(const fs::path& path) {
    fs::last_write_time(path, fs::file_time_type::clock::now() - std::chrono::hours(1));
}

TEST(PrivateTemporaryDirectory, IsItsOwnersAloneAndGoesWithAllThatIsInIt) {
    const TemporaryDirectory parent;
    fs::path path;
    {
        auto directory = PrivateTemporaryDirectory::create(parent.path(), "vellmark-test-");
        ASSERT_TRUE(directory);
        const auto moved = std::move(*directory);
        path = moved.path();
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_all);
        writeFile(path / "below" / "file", "text");
        ::mkfifo((path / "fifo").c_str(), 0600);
    }
    EXPECT_FALSE(fs::exists(path));
    EXPECT_FALSE(PrivateTemporaryDirectory::create(parent / "missing", "vellmark-test-"));
}

TEST(PrivateTemporaryDirectory, WhatAKilledProgramLeftGoesAndWhatIsInUseStays) {
    const TemporaryDirectory parent;
    const auto used = PrivateTemporaryDirectory::create(parent.path(), "vellmark-test-");
    makeOld(used->path());
    writeFile(parent / "vellmark-test-left/log", "someone@example.com");
    writeFile(parent / "vellmark-test-new/log", "being made");
    writeFile(parent / "vellmark-test-file", "not a directory");
    writeFile(parent / "other/file", "another program's");
    fs::create_directory_symlink(parent / "other", parent / "vellmark-test-link");
    for (const char* name : {"vellmark-test-left", "vellmark-test-file", "other"}) {
        makeOld(parent / name);
    }

    const auto next = PrivateTemporaryDirectory::create(parent.path(), "vellmark-test-");
    EXPECT_FALSE(fs::exists(parent / "vellmark-test-left"));
    for (const char* name : {"vellmark-test-new", "vellmark-test-file", "other/file"}) {
        EXPECT_TRUE(fs::exists(parent / name)) << name;
    }
    EXPECT_TRUE(fs::exists(used->path()));
}

} // namespace
} // namespace vellmark::tests
