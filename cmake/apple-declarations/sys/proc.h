#pragma once

#define SZOMB 5
