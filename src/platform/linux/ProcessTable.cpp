#include "platform/ProcessTable.h"

#include "platform/Descriptor.h"
#include "platform/linux/ProcessDescriptor.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <charconv>
#include <csignal>
#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

struct Status {
    char state = 'X';
    pid_t parent = 0;
    pid_t group = 0;
    ProcessTime begin = 0;
};

/// Absent, with errno set, when there is no such process or it cannot be read.
std::optional<Status> statusOf(pid_t pid) {
    const std::string path = "/proc/" + std::to_string(pid) + "/stat";
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 1024> bytes;
    const ssize_t count = file.isOpen() ? ::read(file.get(), bytes.data(), bytes.size()) : -1;
    if (count <= 0) {
        return std::nullopt;
    }
    // "pid (name) state parent group …": the name may hold blanks and brackets itself.
    const std::string_view text(bytes.data(), static_cast<std::size_t>(count));
    const auto nameEnd = text.rfind(") ");
    if (nameEnd == std::string_view::npos) {
        return std::nullopt;
    }
    std::string_view rest = text.substr(nameEnd + 2);
    Status status;
    for (int number = 0; !rest.empty(); ++number) {
        const std::string_view field = rest.substr(0, rest.find(' '));
        const auto read = [field](auto& value) {
            std::from_chars(field.data(), field.data() + field.size(), value);
        };
        if (number == 0) {
            status.state = field.empty() ? 'X' : field.front();
        } else if (number == 1) {
            read(status.parent);
        } else if (number == 2) {
            read(status.group);
        } else if (number == 19) {
            read(status.begin);
        }
        rest.remove_prefix(std::min(field.size() + 1, rest.size()));
    }
    return status;
}

bool lacksDescriptors() {
    return errno == EMFILE || errno == ENFILE;
}

bool isLiving(const Status& status) {
    return status.state != 'Z' && status.state != 'X';
}

std::optional<pid_t> numberOf(const std::string& name) {
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error != std::errc() || end != name.data() + name.size()) {
        return std::nullopt;
    }
    return pid;
}

/// The kernel's own list of a process's children, one file per thread of it; absent where the
/// kernel was built without.
std::optional<std::vector<pid_t>> listedChildren(pid_t parent) {
    std::vector<pid_t> children;
    std::error_code error;
    const fs::path tasks = "/proc/" + std::to_string(parent) + "/task";
    for (fs::directory_iterator task(tasks, error), end; !error && task != end;
         task.increment(error)) {
        std::ifstream file(task->path() / "children");
        std::error_code ignored; // a task may end at any moment
        if (!file && fs::exists(task->path(), ignored)) {
            return std::nullopt;
        }
        for (pid_t child = 0; file >> child;) {
            children.push_back(child);
        }
    }
    return children;
}

std::vector<pid_t> scannedChildren(pid_t parent) {
    std::vector<pid_t> children;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const auto pid = numberOf(entry->path().filename().string());
        if (!pid) {
            continue;
        }
        const auto status = statusOf(*pid);
        if (status && status->parent == parent) {
            children.push_back(*pid);
        }
    }
    return children;
}

} // namespace

std::vector<pid_t> directChildren(pid_t parent) {
    const auto listed = listedChildren(parent);
    std::vector<pid_t> children = listed ? *listed : scannedChildren(parent);
    std::erase_if(children, [](pid_t child) { return !isProcessAlive(child); });
    return children;
}

std::optional<std::vector<pid_t>> processGroupMembers(pid_t group) {
    std::vector<pid_t> members;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const auto pid = numberOf(entry->path().filename().string());
        // Asking for the group takes a thirtieth of reading the status, for each process there is.
        const pid_t itsGroup = pid ? ::getpgid(*pid) : 0;
        if (!pid || (itsGroup != group && (itsGroup >= 0 || errno == ESRCH))) {
            continue;
        }
        const auto status = statusOf(*pid);
        if (!status && lacksDescriptors()) {
            return std::nullopt;
        }
        if (status && status->group == group && isLiving(*status)) {
            members.push_back(*pid);
        }
    }
    return error ? std::nullopt : std::optional(members);
}

ProcessTime processTimeNow() {
    const ProcessTime ticksPerSecond = ::sysconf(_SC_CLK_TCK); // from memory
    timespec now{};
    ::clock_gettime(CLOCK_BOOTTIME, &now);
    return now.tv_sec * ticksPerSecond + now.tv_nsec * ticksPerSecond / 1'000'000'000;
}

bool isProcessAlive(pid_t pid) {
    const auto status = statusOf(pid);
    return status && isLiving(*status);
}

bool isProcessStopped(pid_t pid) {
    const auto status = statusOf(pid);
    return status && (status->state == 'T' || status->state == 't');
}

struct ProcessHandle::Identity {
    pid_t pid;
    Descriptor descriptor;
};

ProcessHandle::ProcessHandle(std::unique_ptr<Identity> identity) : identity_(std::move(identity)) {}
ProcessHandle::ProcessHandle(ProcessHandle&&) noexcept = default;
ProcessHandle& ProcessHandle::operator=(ProcessHandle&&) noexcept = default;
ProcessHandle::~ProcessHandle() = default;

std::optional<ProcessHandle> ProcessHandle::open(pid_t pid) {
    Descriptor descriptor(pid > 0 ? ::pidfd_open(pid, 0) : -1);
    if (!descriptor.isOpen()) {
        return std::nullopt;
    }
    return ProcessHandle(std::make_unique<Identity>(Identity{pid, std::move(descriptor)}));
}

std::optional<ProcessHandle> ProcessHandle::openChild(pid_t pid, pid_t parent) {
    auto handle = open(pid);
    if (!handle) {
        return std::nullopt;
    }
    // Checked last: whatever process the handle holds, if it is still alive it is this one.
    const auto status = statusOf(pid);
    return status && status->parent == parent ? std::move(handle) : std::nullopt;
}

std::optional<ProcessHandle> ProcessHandle::openBegunBy(pid_t pid, ProcessTime time) {
    auto handle = open(pid);
    if (!handle) {
        return std::nullopt;
    }
    const auto status = statusOf(pid);
    return status && status->begin <= time ? std::move(handle) : std::nullopt;
}

pid_t ProcessHandle::pid() const {
    return identity_->pid;
}

bool ProcessHandle::isAlive() const {
    pollfd ended{identity_->descriptor.get(), POLLIN, 0};
    return ::poll(&ended, 1, 0) == 0;
}

bool ProcessHandle::isInGroup(pid_t group) const {
    const auto status = statusOf(pid());
    // Checked last: if this process is still alive, it was the one with the number.
    return status && status->group == group && isAlive();
}

bool ProcessHandle::signal(int number) const {
    return ::pidfd_send_signal(identity_->descriptor.get(), number, nullptr, 0) == 0;
}

} // namespace vellmark
