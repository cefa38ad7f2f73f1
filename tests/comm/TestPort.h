// Opening a pseudo-terminal as a port.
#pragma once

#include "platform/Comm.h"
#include "platform/Error.h"
#include "tests/comm/TestDevice.h"

inline HANDLE OpenPort(const char* name) {
    return CreateFileA(name, GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                       FILE_ATTRIBUTE_NORMAL | FILE_FLAG_OVERLAPPED, nullptr);
}
