#pragma once

#include <stddef.h>

#ifdef __cplusplus
extern "C" {
#endif

typedef struct _malloc_zone_t malloc_zone_t;

size_t malloc_zone_pressure_relief(malloc_zone_t* zone, size_t goal);

#ifdef __cplusplus
}
#endif
