// Which thread has which message queue. Any thread may call these. Nothing outside platform/
// includes this header.
#pragma once

#include "platform/messages/MessageQueue.h"

namespace platform {

// The calling thread's queue, made by the first call; it lives until the thread ends. Null with the
// last error set: ERROR_TOO_MANY_OPEN_FILES, ERROR_NOT_ENOUGH_MEMORY, or ERROR_INVALID_THREAD_ID in
// a thread that has been through EndCurrentQueue.
CMessageQueue* CurrentQueue();

// The queue of a thread that has one; null with ERROR_INVALID_THREAD_ID.
std::shared_ptr<CMessageQueue> FindThreadQueue(DWORD threadId);

// Ends the calling thread's windows and its queue for good. The end of a thread does this by
// itself; doing it earlier shows others the end of both at a known moment.
void EndCurrentQueue();

} // namespace platform
