#include "platform/ProcessTable.h"

#include <csignal>
#include <cstdint>
#include <libproc.h>
#include <sys/proc.h>
#include <sys/proc_info.h>

namespace vellmark {
namespace {

/// The record that the kernel keeps of a process; absent when there is none. It is given for
/// zombies as well.
std::optional<proc_bsdinfo> recordOf(pid_t pid) {
    proc_bsdinfo record{};
    const int size = ::proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &record, sizeof record);
    if (size != static_cast<int>(sizeof record))
        return std::nullopt;
    return record;
}

} // namespace

std::vector<pid_t> directChildren(pid_t parent) {
    std::vector<pid_t> children(64);
    for (;;) {
        const int bytes = static_cast<int>(children.size() * sizeof(pid_t));
        const int count = ::proc_listchildpids(parent, children.data(), bytes);
        if (count <= 0)
            return {};
        if (static_cast<std::size_t>(count) < children.size()) {
            children.resize(static_cast<std::size_t>(count));
            break;
        }
        // A full list may have been cut off.
        children.resize(children.size() * 2);
    }
    std::erase_if(children, [](pid_t child) { return !isProcessAlive(child); });
    return children;
}

bool isProcessAlive(pid_t pid) {
    proc_bsdshortinfo record{};
    const int size = ::proc_pidinfo(pid, PROC_PIDT_SHORTBSDINFO, 0, &record, sizeof record);
    return size == static_cast<int>(sizeof record) && record.pbsi_status != SZOMB;
}

struct ProcessHandle::Identity {
    pid_t pid;
    std::uint64_t startSeconds;
    std::uint64_t startMicroseconds;

    bool matches(const proc_bsdinfo& record) const {
        return record.pbi_start_tvsec == startSeconds &&
               record.pbi_start_tvusec == startMicroseconds;
    }
};

ProcessHandle::ProcessHandle(std::unique_ptr<Identity> identity) : identity_(std::move(identity)) {}
ProcessHandle::ProcessHandle(ProcessHandle&&) noexcept = default;
ProcessHandle& ProcessHandle::operator=(ProcessHandle&&) noexcept = default;
ProcessHandle::~ProcessHandle() = default;

std::optional<ProcessHandle> ProcessHandle::open(pid_t pid) {
    const auto record = recordOf(pid);
    if (!record)
        return std::nullopt;
    return ProcessHandle(std::make_unique<Identity>(
        Identity{pid, record->pbi_start_tvsec, record->pbi_start_tvusec}));
}

std::optional<ProcessHandle> ProcessHandle::openChild(pid_t pid, pid_t parent) {
    const auto record = recordOf(pid);
    if (!record || record->pbi_ppid != static_cast<std::uint32_t>(parent))
        return std::nullopt;
    return ProcessHandle(std::make_unique<Identity>(
        Identity{pid, record->pbi_start_tvsec, record->pbi_start_tvusec}));
}

pid_t ProcessHandle::pid() const {
    return identity_->pid;
}

bool ProcessHandle::isAlive() const {
    const auto record = recordOf(identity_->pid);
    return record && identity_->matches(*record) && record->pbi_status != SZOMB;
}

bool ProcessHandle::signal(int number) const {
    // The system has no way to name a process but its number; what is left between the look and the
    // signal is too short for the numbers to come round.
    return isAlive() && ::kill(identity_->pid, number) == 0;
}

} // namespace vellmark
