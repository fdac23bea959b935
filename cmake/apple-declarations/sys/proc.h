#pragma once

#define SSTOP 4
#define SZOMB 5
