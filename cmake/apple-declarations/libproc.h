#pragma once

#include <stdint.h>
#include <sys/proc_info.h>
#include <sys/types.h>

#ifdef __cplusplus
extern "C" {
#endif

int proc_listchildpids(pid_t ppid, void* buffer, int buffersize);
int proc_listpgrppids(pid_t pgrpid, void* buffer, int buffersize);
int proc_pidinfo(int pid, int flavor, uint64_t arg, void* buffer, int buffersize);

#ifdef __cplusplus
}
#endif
