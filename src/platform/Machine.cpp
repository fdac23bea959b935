#include "platform/Machine.h"

#include "platform/PrivateDirectory.h"
#include "platform/SystemDirectories.h"

#include <cerrno>
#include <pwd.h>
#include <unistd.h>
#include <vector>

extern char** environ;

namespace vellmark {

namespace fs = std::filesystem;

namespace {

/// A credential exists where the sandbox has a file "service/account".
class FileCredentialStore final : public CredentialStore {
public:
    explicit FileCredentialStore(fs::path directory) : directory_(std::move(directory)) {}

    std::optional<bool> hasGenericPassword(const std::string& service,
                                           const std::string& account) const override {
        std::error_code ignored;
        return fs::exists(directory_ / service / account, ignored);
    }

private:
    fs::path directory_;
};

Environment processEnvironment() {
    Environment environment;
    for (char** entry = environ; entry != nullptr && *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const auto separator = text.find('=');
        if (separator != std::string_view::npos && separator > 0) {
            environment.emplace(text.substr(0, separator), text.substr(separator + 1));
        }
    }
    return environment;
}

fs::path homeFromPasswordDatabase() {
    std::vector<char> buffer(1024);
    passwd entry{};
    passwd* found = nullptr;
    int error = 0;
    while ((error = getpwuid_r(getuid(), &entry, buffer.data(), buffer.size(), &found)) == ERANGE) {
        buffer.resize(buffer.size() * 2);
    }
    if (error != 0 || found == nullptr || found->pw_dir == nullptr || *found->pw_dir == '\0') {
        return "/";
    }
    return normalized(found->pw_dir);
}

/// Variables that would lead a child, or the program itself, out of the sandbox.
bool leadsOutOfSandbox(const std::string& name) {
    return name.starts_with("XDG_") || name == "CODEX_HOME" || name == "CLAUDE_CONFIG_DIR";
}

} // namespace

fs::path normalized(const fs::path& path) {
    const fs::path normal = path.lexically_normal();
    return normal.has_filename() || normal == normal.root_path() ? normal : normal.parent_path();
}

fs::path absolutePathVariable(const Environment& environment, const std::string& name) {
    const auto found = environment.find(name);
    if (found == environment.end()) {
        return {};
    }
    const fs::path path = found->second;
    return path.is_absolute() ? normalized(path) : fs::path();
}

fs::path Machine::resolved(const std::string& path) const {
    if (path == "~") {
        return home;
    }
    if (path.starts_with("~/")) {
        return home / path.substr(2);
    }
    const fs::path plain = path;
    return root.empty() || !plain.is_absolute() ? plain : root / plain.relative_path();
}

std::string Machine::abbreviated(const fs::path& path) const {
    const std::string text = path.string();
    const std::string prefix = home.string() + "/";
    return text.starts_with(prefix) ? "~/" + text.substr(prefix.size()) : text;
}

Machine Machine::current() {
    Machine machine;
    machine.environment = processEnvironment();
    machine.home = absolutePathVariable(machine.environment, "HOME");
    if (machine.home.empty()) {
        machine.home = homeFromPasswordDatabase();
    }
    auto directories = SystemDirectories::of(machine.home, machine.environment);
    machine.applicationSupport = std::move(directories.applicationSupport);
    machine.configuration = std::move(directories.configuration);
    machine.temporary = std::move(directories.temporary);
    machine.chosenExecutables = std::make_shared<ChosenExecutables>();
    machine.credentials = makeSystemCredentialStore();
    return machine;
}

Machine Machine::sandbox(const fs::path& directory) {
    const fs::path base = fs::absolute(directory);
    Machine machine;
    machine.home = base / "home";
    machine.root = base / "root";
    machine.applicationSupport = machine.home / ".local/share";
    machine.configuration = machine.home / ".config";
    machine.temporary = base / "tmp";
    machine.chosenExecutables = std::make_shared<ChosenExecutables>();
    machine.credentials = std::make_shared<FileCredentialStore>(base / "credentials");
    for (const auto& folder : {machine.applicationSupport, machine.configuration, machine.root,
                               machine.temporary, base / "credentials"}) {
        if (const auto error = makePrivateDirectory(folder)) {
            throw fs::filesystem_error("cannot create directories", folder, error);
        }
    }
    machine.environment = processEnvironment();
    std::erase_if(machine.environment,
                  [](const auto& variable) { return leadsOutOfSandbox(variable.first); });
    machine.environment["HOME"] = machine.home.string();
    machine.environment["TMPDIR"] = machine.temporary.string();
    return machine;
}

} // namespace vellmark
