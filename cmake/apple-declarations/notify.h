#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

#define NOTIFY_STATUS_OK 0

uint32_t notify_post(const char* name);
uint32_t notify_register_file_descriptor(const char* name, int* notify_fd, int flags,
                                         int* out_token);
uint32_t notify_cancel(int token);

#ifdef __cplusplus
}
#endif
