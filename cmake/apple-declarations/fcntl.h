#pragma once

#include_next <fcntl.h>

#define F_FULLFSYNC 51
#define F_SETNOSIGPIPE 73
#define O_EVTONLY 0x00008000
