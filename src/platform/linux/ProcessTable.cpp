#include "platform/ProcessTable.h"

#include "platform/Descriptor.h"
#include "platform/linux/ProcessDescriptor.h"

#include <charconv>
#include <csignal>
#include <filesystem>
#include <fstream>
#include <poll.h>
#include <string>

namespace vellmark {
namespace {

namespace fs = std::filesystem;

struct Status {
    char state = 'X';
    pid_t parent = 0;
};

std::optional<Status> statusOf(pid_t pid) {
    std::ifstream file("/proc/" + std::to_string(pid) + "/stat");
    std::string text;
    // The process may end between the opening and the reading, which an iterator over the stream's
    // buffer would throw for.
    std::getline(file, text, '\0');
    // "pid (name) state parent …": the name may hold blanks and brackets itself.
    const auto nameEnd = text.rfind(") ");
    if (nameEnd == std::string::npos || nameEnd + 4 >= text.size())
        return std::nullopt;
    Status status;
    status.state = text[nameEnd + 2];
    const char* const number = text.data() + nameEnd + 4;
    std::from_chars(number, text.data() + text.size(), status.parent);
    return status;
}

bool isLiving(const Status& status) {
    return status.state != 'Z' && status.state != 'X';
}

std::optional<pid_t> numberOf(const std::string& name) {
    pid_t pid = 0;
    const auto [end, error] = std::from_chars(name.data(), name.data() + name.size(), pid);
    if (error != std::errc() || end != name.data() + name.size())
        return std::nullopt;
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
        if (!file && fs::exists(task->path(), ignored))
            return std::nullopt;
        for (pid_t child = 0; file >> child;)
            children.push_back(child);
    }
    return children;
}

std::vector<pid_t> scannedChildren(pid_t parent) {
    std::vector<pid_t> children;
    std::error_code error;
    for (fs::directory_iterator entry("/proc", error), end; !error && entry != end;
         entry.increment(error)) {
        const auto pid = numberOf(entry->path().filename().string());
        if (!pid)
            continue;
        const auto status = statusOf(*pid);
        if (status && status->parent == parent)
            children.push_back(*pid);
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

bool isProcessAlive(pid_t pid) {
    const auto status = statusOf(pid);
    return status && isLiving(*status);
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
    if (!descriptor.isOpen())
        return std::nullopt;
    return ProcessHandle(std::make_unique<Identity>(Identity{pid, std::move(descriptor)}));
}

std::optional<ProcessHandle> ProcessHandle::openChild(pid_t pid, pid_t parent) {
    auto handle = open(pid);
    if (!handle)
        return std::nullopt;
    // Looked at only now: whatever process the handle holds, if it still lives it is this one.
    const auto status = statusOf(pid);
    return status && status->parent == parent ? std::move(handle) : std::nullopt;
}

pid_t ProcessHandle::pid() const {
    return identity_->pid;
}

bool ProcessHandle::isAlive() const {
    pollfd ended{identity_->descriptor.get(), POLLIN, 0};
    return ::poll(&ended, 1, 0) == 0;
}

bool ProcessHandle::signal(int number) const {
    return ::pidfd_send_signal(identity_->descriptor.get(), number, nullptr, 0) == 0;
}

} // namespace vellmark
