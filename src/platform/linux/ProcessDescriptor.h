#pragma once

// The C library of Debian 12 declares these without C linkage.
extern "C" {
#include <sys/pidfd.h>
}
