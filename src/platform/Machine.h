#pragma once

#include "platform/ChosenExecutables.h"
#include "platform/CredentialStore.h"

#include <filesystem>
#include <map>
#include <memory>
#include <string>

namespace vellmark {

using Environment = std::map<std::string, std::string>;

/// Where things are on the machine that the program looks at: the real one, or a sandbox directory
/// that stands in for it (the demo and the tests). A value; made once at start and passed down.
struct Machine {
    /// The user's home directory ("~").
    std::filesystem::path home;
    /// Put before absolute paths at which agents are looked for; empty on the real machine.
    std::filesystem::path root;
    /// The directory for application data; the program's own folder is `supportDirectory()`.
    std::filesystem::path applicationSupport;
    /// The directory for settings files (used on Linux).
    std::filesystem::path configuration;
    std::filesystem::path temporary;
    /// The program's own environment; children get a filtered copy.
    Environment environment;
    /// Answers whether a credential exists, without reading it.
    std::shared_ptr<const CredentialStore> credentials;
    /// The user's choices from the settings; null means none.
    std::shared_ptr<ChosenExecutables> chosenExecutables;

    bool isSandbox() const { return !root.empty(); }
    std::filesystem::path supportDirectory() const { return applicationSupport / "Vellmark"; }
    // What is in there and read by more than one layer.
    std::filesystem::path usageHistoryFile() const {
        return supportDirectory() / "usage-history.json";
    }
    std::filesystem::path lastSnapshotsFile() const {
        return supportDirectory() / "last-snapshots.json";
    }
    /// What sessions of the agents have told; see StatusLineReadings.
    std::filesystem::path statusLineFile() const { return supportDirectory() / "status-line.json"; }
    std::filesystem::path activityLogFile() const { return supportDirectory() / "activity.log"; }

    /// `path` as it is to be opened: "~/…" below home, an absolute one below `root`.
    std::filesystem::path resolved(const std::string& path) const;

    /// `path` as the user writes it: "~/…" below home.
    std::string abbreviated(const std::filesystem::path& path) const;

    /// The machine that the program runs on.
    static Machine current();

    /// A machine whose home, folders and agents are all inside `directory`: "home", "root", "tmp",
    /// and a credential for "service/account" where the file "credentials/service/account" exists.
    /// Creates the folders. Throws std::filesystem::filesystem_error.
    static Machine sandbox(const std::filesystem::path& directory);
};

} // namespace vellmark
