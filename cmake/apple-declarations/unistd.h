#pragma once

#include_next <unistd.h>

#define _CS_DARWIN_USER_TEMP_DIR 65537
