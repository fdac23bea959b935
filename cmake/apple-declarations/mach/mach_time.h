#pragma once

#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

struct mach_timebase_info {
    uint32_t numer;
    uint32_t denom;
};
typedef struct mach_timebase_info mach_timebase_info_data_t;

int mach_timebase_info(mach_timebase_info_data_t* info);
uint64_t mach_continuous_time(void);

#ifdef __cplusplus
}
#endif
