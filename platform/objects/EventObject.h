// An event: a flag that threads set, clear and wait for. Owned by the handle table; any thread may
// call any operation. Nothing outside platform/ includes this header.
//
// The state is a word in memory, so that looking at it and setting what is set already cost no
// system call. An eventfd mirrors it for poll(); word and eventfd change together under the mutex.
#pragma once

#include "platform/objects/Descriptor.h"
#include "platform/objects/HandleObject.h"

#include <atomic>
#include <mutex>

namespace platform {

class CEventObject final : public CHandleObject {
  public:
    explicit CEventObject(bool manualReset) : m_bManualReset(manualReset) {}

    // Gets the eventfd. FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create(bool signalled);

    void Set();
    void Reset();

    int WaitDescriptor() const override { return m_mirror.Get(); }
    bool IsReady() const override { return m_bSignalled.load(std::memory_order_acquire); }
    bool TryAcquire(short events) override;

    // Wakes those who wait for the event; they find its handle closed.
    BOOL Close() override;

  private:
    void Mirror(bool signalled);

    const bool m_bManualReset;
    std::atomic<bool> m_bSignalled = false;
    std::mutex m_mutex;
    bool m_bClosed = false; // the mirror then stays signalled
    CDescriptor m_mirror;
};

} // namespace platform
