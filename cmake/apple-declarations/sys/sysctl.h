#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

int sysctlbyname(const char* name, void* oldValue, size_t* oldSize, void* newValue, size_t newSize);

#ifdef __cplusplus
}
#endif
