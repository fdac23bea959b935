#pragma once

#include_next <fcntl.h>

#define F_SETNOSIGPIPE 73
