// The calling thread's message queue. Nothing outside platform/ includes this header.
#pragma once

#include "platform/messages/MessageQueue.h"

#include <memory>

namespace platform {

// The queue, made by the first call; the thread's windows and the queue end with the thread. Null
// with the last error set: ERROR_TOO_MANY_OPEN_FILES, ERROR_NOT_ENOUGH_MEMORY, or
// ERROR_INVALID_THREAD_ID in what a thread runs after that, as main() does at the process's end.
std::shared_ptr<CMessageQueue> CurrentQueue();

} // namespace platform
