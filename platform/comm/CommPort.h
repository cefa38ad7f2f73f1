// An open serial port: its driver, its receive queue, its sending side and its comm events.
//
// Owned by the handle table and by the calls in progress on it. Any thread may call any operation;
// the two directions have a lock each, so that a reader and a writer do not wait for one another,
// and no lock is held while a call blocks. Close ends what is pending and gives the device back;
// the descriptor itself goes with the last call that still uses it.
//
// The operations have the arguments, results and errors of the calls in platform/Comm.h.
#pragma once

#include "platform/comm/CommDriver.h"
#include "platform/comm/CommEventWait.h"
#include "platform/comm/CommLines.h"
#include "platform/comm/CommOutput.h"
#include "platform/comm/CommQueue.h"
#include "platform/comm/CommWaiters.h"
#include "platform/objects/Descriptor.h"
#include "platform/objects/TransferObject.h"

#include <atomic>
#include <memory>
#include <mutex>
#include <utility>

namespace platform {

class CCommPort final : public CTransferObject, public std::enable_shared_from_this<CCommPort> {
  public:
    // FALSE with the errors of CreateFileA.
    BOOL Open(LPCSTR path);

    int WaitDescriptor() const override { return m_readable.Get(); }
    bool IsReady() const override;
    void BeginWait() override;
    void EndWait() override;
    bool TryAcquire(short events) override;
    BOOL Close() override;

    BOOL Read(void* buffer, DWORD count, LPDWORD read, OVERLAPPED* overlapped) override;
    BOOL Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) override;
    BOOL GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL wait) override;

    BOOL GetProperties(COMMPROP& properties);
    BOOL SetQueueSizes(DWORD input, DWORD output);
    BOOL ClearError(LPDWORD errors, COMSTAT* status);
    BOOL Purge(DWORD flags);

    // Takes what the driver holds into the receive queue while nobody reads it, up to 1 MiB. What
    // finds no room is left in the driver when that can hold the sender (Held), else discarded.
    // Ended once nothing more can come.
    enum class Intake { Taken, Held, Discarded, Ended };
    Intake TakeIn();

    // For what is the driver's alone: lines and line settings.
    CCommDriver& Driver() { return m_driver; }
    bool IsGone() const { return m_driver.IsGone(); }

    // The bytes that wait to be read. FALSE once nothing more can come.
    BOOL CountReceived(DWORD& count);

    CCommEventWait& Events() { return m_events; }

    // The modem lines, which keep the port; those of the driver, unless others were put in their
    // place before anybody looked.
    std::shared_ptr<ICommLines> Lines();
    void ReplaceLines(std::shared_ptr<ICommLines> lines) { m_otherLines = std::move(lines); }

    HANDLE HangupHandle();
    // The hangup handle was closed by somebody else.
    void ForgetHangupHandle();

  private:
    int TakeReceived(void* buffer, DWORD count);
    int FillQueue();
    Intake DiscardReceived();
    int ReceiveFromDriver(void* buffer, DWORD count);

    CCommDriver m_driver;
    CCommDriverLines m_driverLines{m_driver};
    std::shared_ptr<ICommLines> m_otherLines;
    CCommEventWait m_events{*this};
    CCommOutput m_output{m_driver};
    std::atomic<DWORD> m_dwOutputQueueSize;

    // An epoll instance: shows what the device shows, and that the waiters have been woken.
    CDescriptor m_readable;

    mutable std::mutex m_receiveMutex; // guards what follows
    CCommQueue m_queue;
    // For received bytes; woken when another thread has taken them from under those who poll, out
    // of the driver into the queue.
    CCommWaiters m_waiters;
    bool m_bInputEnded = false; // the device is gone and the driver has nothing left
    bool m_bFilledUp = false;   // the last fill left bytes in the driver
    bool m_bAskDriver = false;  // the driver may hold bytes beside those in the queue
    bool m_bReceiveClosed = false;

    std::mutex m_hangupMutex; // guards what follows
    HANDLE m_hHangup = nullptr;
    bool m_bHangupClosed = false;
};

} // namespace platform
