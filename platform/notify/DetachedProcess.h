// A program that runs on its own: no child of this process once it runs, in a session of its own
// without a terminal, its standard streams on the null device, nothing else open, with signals as a
// new program has them. No state; any thread may call this.
#pragma once

#include "platform/Types.h"

namespace platform {

// Starts a program, given by its path and its arguments (the first is its name; null ends them).
// TRUE once it runs; FALSE with the last error set when it could not be started.
BOOL StartDetached(const char* path, const char* const* arguments);

} // namespace platform
