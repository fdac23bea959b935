#include "platform/ProcessTable.h"

#include <csignal>
#include <cstdint>
#include <libproc.h>
#include <sys/proc.h>
#include <sys/proc_info.h>
#include <sys/time.h>

namespace vellmark {
namespace {

/// The record that the kernel keeps of a process; absent when there is none. It is given for
/// zombies as well.
std::optional<proc_bsdinfo> recordOf(pid_t pid) {
    proc_bsdinfo record{};
    const int size = ::proc_pidinfo(pid, PROC_PIDTBSDINFO, 0, &record, sizeof record);
    if (size != static_cast<int>(sizeof record)) {
        return std::nullopt;
    }
    return record;
}

/// What a listing call of the system tells about `number`, without zombies; absent when it fails.
std::optional<std::vector<pid_t>> listed(int (*list)(pid_t, void*, int), pid_t number) {
    std::vector<pid_t> processes(64);
    for (;;) {
        const int bytes = static_cast<int>(processes.size() * sizeof(pid_t));
        const int count = list(number, processes.data(), bytes);
        if (count < 0) {
            return std::nullopt;
        }
        if (static_cast<std::size_t>(count) < processes.size()) {
            processes.resize(static_cast<std::size_t>(count));
            break;
        }
        // A full list may have been cut off.
        processes.resize(processes.size() * 2);
    }
    std::erase_if(processes, [](pid_t process) { return !isProcessAlive(process); });
    return processes;
}

ProcessTime microseconds(std::uint64_t seconds, std::uint64_t rest) {
    return static_cast<ProcessTime>(seconds * 1'000'000 + rest);
}

} // namespace

std::vector<pid_t> directChildren(pid_t parent) {
    return listed(::proc_listchildpids, parent).value_or(std::vector<pid_t>());
}

std::optional<std::vector<pid_t>> processGroupMembers(pid_t group) {
    return listed(::proc_listpgrppids, group);
}

ProcessTime processTimeNow() {
    timeval now{};
    ::gettimeofday(&now, nullptr);
    return microseconds(static_cast<std::uint64_t>(now.tv_sec),
                        static_cast<std::uint64_t>(now.tv_usec));
}

bool isProcessAlive(pid_t pid) {
    proc_bsdshortinfo record{};
    const int size = ::proc_pidinfo(pid, PROC_PIDT_SHORTBSDINFO, 0, &record, sizeof record);
    return size == static_cast<int>(sizeof record) && record.pbsi_status != SZOMB;
}

bool isProcessStopped(pid_t pid) {
    const auto record = recordOf(pid);
    return record && record->pbi_status == SSTOP;
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
    if (!record) {
        return std::nullopt;
    }
    return ProcessHandle(std::make_unique<Identity>(
        Identity{pid, record->pbi_start_tvsec, record->pbi_start_tvusec}));
}

std::optional<ProcessHandle> ProcessHandle::openChild(pid_t pid, pid_t parent) {
    const auto record = recordOf(pid);
    if (!record || record->pbi_ppid != static_cast<std::uint32_t>(parent)) {
        return std::nullopt;
    }
    return ProcessHandle(std::make_unique<Identity>(
        Identity{pid, record->pbi_start_tvsec, record->pbi_start_tvusec}));
}

std::optional<ProcessHandle> ProcessHandle::openBegunBy(pid_t pid, ProcessTime time) {
    const auto record = recordOf(pid);
    if (!record || microseconds(record->pbi_start_tvsec, record->pbi_start_tvusec) > time) {
        return std::nullopt;
    }
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

bool ProcessHandle::isInGroup(pid_t group) const {
    const auto record = recordOf(identity_->pid);
    return record && identity_->matches(*record) && record->pbi_status != SZOMB &&
           record->pbi_pgid == static_cast<std::uint32_t>(group);
}

bool ProcessHandle::signal(int number) const {
    // A process can only be named by its number here; the time between the check and the signal is
    // too short for the numbers to come round.
    return isAlive() && ::kill(identity_->pid, number) == 0;
}

} // namespace vellmark
