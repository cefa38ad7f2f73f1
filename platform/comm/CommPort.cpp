// Bytes reach the reader by way of the queue, which one large read fills, so that a reader of small
// pieces costs no system call each. Whoever asks how many there are fills it too: it then takes the
// bytes from where other waiters look for them, who must be woken.
#include "platform/comm/CommPort.h"

#include "platform/Error.h"
#include "platform/comm/CommHangup.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/MakeObject.h"
#include "platform/objects/TransferRecord.h"

#include <sys/epoll.h>

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr DWORD kQueueSizeAtOpening = 4096;
constexpr DWORD kLargestQueueSize = 16 * 1024 * 1024;
constexpr WORD kPropertiesLength = sizeof(COMMPROP);

// Makes a descriptor that shows POLLIN while one of these shows it or has hung up.
BOOL JoinDescriptors(CDescriptor& both, int one, int other) {
    both.Reset(epoll_create1(EPOLL_CLOEXEC));
    if (!both)
        return FailWithErrno();
    for (const int descriptor : {one, other}) {
        epoll_event event{};
        event.events = EPOLLIN;
        if (epoll_ctl(both.Get(), EPOLL_CTL_ADD, descriptor, &event) != 0)
            return FailWithErrno();
    }
    return TRUE;
}

} // namespace

BOOL CCommPort::Open(LPCSTR path) {
    m_dwOutputQueueSize = kQueueSizeAtOpening;
    if (!m_queue.Resize(kQueueSizeAtOpening))
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    return m_output.Create() && m_waiters.Create() && m_events.Create() && m_driver.Open(path) &&
           JoinDescriptors(m_readable, m_driver.Descriptor(), m_waiters.WakeDescriptor());
}

bool CCommPort::IsReady() const {
    if (IsGone())
        return true;
    const std::lock_guard lock(m_receiveMutex);
    return !m_queue.IsEmpty();
}

bool CCommPort::TryAcquire(short events) {
    return (events & (POLLIN | POLLHUP | POLLERR)) != 0 || IsReady();
}

void CCommPort::BeginWait() {
    const std::lock_guard lock(m_receiveMutex);
    m_waiters.Enter();
}

void CCommPort::EndWait() {
    const std::lock_guard lock(m_receiveMutex);
    m_waiters.Leave();
}

BOOL CCommPort::Close() {
    m_events.Close();
    m_output.Close();
    {
        const std::lock_guard lock(m_receiveMutex);
        m_bReceiveClosed = true;
    }
    HANDLE hangup = nullptr;
    {
        const std::lock_guard lock(m_hangupMutex);
        m_bHangupClosed = true;
        hangup = std::exchange(m_hHangup, nullptr);
    }
    if (hangup)
        RemoveHandle(hangup);
    return m_driver.Release();
}

// ---- Receiving

// -1 once nothing more can come; the driver is asked again even when another call has found the
// device gone, for what it received before.
int CCommPort::ReceiveFromDriver(void* buffer, DWORD count) {
    if (!m_bInputEnded) {
        const int received = m_driver.Receive(buffer, count);
        m_bInputEnded = received <= 0 && IsGone();
        if (!m_bInputEnded)
            return received;
    }
    SetLastError(ERROR_DEVICE_NOT_CONNECTED);
    return -1;
}

int CCommPort::FillQueue() {
    const int received = ReceiveFromDriver(m_queue.Room(), m_queue.Free());
    if (received > 0) {
        m_queue.Added(static_cast<DWORD>(received));
        m_events.NoteReceived();
        m_waiters.Wake();
    }
    m_bFilledUp = received > 0 && m_queue.Free() == 0;
    m_bAskDriver = m_bFilledUp;
    return received;
}

CCommPort::Intake CCommPort::TakeIn() {
    const std::lock_guard lock(m_receiveMutex);
    if (m_bReceiveClosed)
        return Intake::Ended;
    Intake result = Intake::Held;
    if (m_queue.Free() > 0 || m_queue.Extend())
        result = FillQueue() < 0 ? Intake::Ended : Intake::Taken;
    else if (!m_driver.HoldsSender())
        result = DiscardReceived();
    m_bAskDriver = true;
    return result;
}

CCommPort::Intake CCommPort::DiscardReceived() {
    BYTE unwanted[kQueueSizeAtOpening];
    const int received = ReceiveFromDriver(unwanted, sizeof unwanted);
    if (received < 0)
        return Intake::Ended;
    return received > 0 ? Intake::Discarded : Intake::Taken;
}

// The queue's bytes first, then the driver's: large pieces straight into the buffer, small ones by
// way of the queue. -1 only when there are no bytes to return.
int CCommPort::TakeReceived(void* buffer, DWORD count) {
    DWORD taken = m_queue.Take(buffer, count);
    int received = 0;
    if (taken < count) {
        BYTE* const rest = static_cast<BYTE*>(buffer) + taken;
        const DWORD left = count - taken;
        if (left >= m_queue.Size()) {
            received = ReceiveFromDriver(rest, left);
            taken += static_cast<DWORD>(std::max(received, 0));
        } else {
            received = FillQueue();
            taken += m_queue.Take(rest, left);
        }
    }
    if (taken == 0 && received < 0)
        return -1;
    if (taken > 0)
        m_bAskDriver = m_bFilledUp;
    return static_cast<int>(taken);
}

BOOL CCommPort::Read(void* buffer, DWORD count, LPDWORD read, OVERLAPPED* overlapped) {
    const std::lock_guard lock(m_receiveMutex);
    if (m_bReceiveClosed)
        return FailWith(ERROR_INVALID_HANDLE);
    const int taken = TakeReceived(buffer, count);
    if (taken < 0)
        return FALSE;
    *read = static_cast<DWORD>(taken);
    if (overlapped)
        EndTransfer(*overlapped, ERROR_SUCCESS, *read);
    return TRUE;
}

BOOL CCommPort::Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) {
    return m_output.Write(buffer, count, written, overlapped);
}

BOOL CCommPort::GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL wait) {
    if (!m_output.Finish(overlapped, wait) || !m_events.Finish(overlapped, wait))
        return FailWith(ERROR_IO_INCOMPLETE);
    return ResultOf(*overlapped, transferred);
}

// ---- State

BOOL CCommPort::GetProperties(COMMPROP& properties) {
    if (properties.wPacketLength != kPropertiesLength)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    properties = {};
    properties.wPacketLength = kPropertiesLength;
    properties.dwCurrentTxQueue = m_dwOutputQueueSize;
    const std::lock_guard lock(m_receiveMutex);
    properties.dwCurrentRxQueue = m_queue.Size();
    return TRUE;
}

BOOL CCommPort::SetQueueSizes(DWORD input, DWORD output) {
    if (input < 1 || input > kLargestQueueSize || output < 1 || output > kLargestQueueSize)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    const std::lock_guard lock(m_receiveMutex);
    if (!m_queue.Resize(input))
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    m_dwOutputQueueSize = output;
    return TRUE;
}

// Costs no system call while a reader works the queue off: the driver is asked when the queue is
// empty, when its last fill left bytes in the driver, and when nothing was taken since it was last
// asked.
BOOL CCommPort::CountReceived(DWORD& count) {
    const std::lock_guard lock(m_receiveMutex);
    if (m_queue.IsEmpty() && FillQueue() < 0)
        return FALSE;
    count = m_queue.Count();
    DWORD waiting = 0;
    if (count > 0 && m_bAskDriver && m_driver.CountInput(waiting))
        count += waiting;
    m_bAskDriver = true;
    return TRUE;
}

BOOL CCommPort::ClearError(LPDWORD errors, COMSTAT* status) {
    DWORD received = 0;
    DWORD unsent = 0;
    DWORD found = 0;
    if (!CountReceived(received))
        return FALSE;
    // What was received before the device went is still to be read.
    const bool isAnswered =
        (!errors || m_driver.TakeErrors(found)) && (!status || m_output.CountUnsent(unsent));
    if (!isAnswered && received == 0)
        return FALSE;
    if (errors)
        *errors = found;
    if (status) {
        *status = {};
        status->cbInQue = received;
        status->cbOutQue = unsent;
    }
    return TRUE;
}

BOOL CCommPort::Purge(DWORD flags) {
    BOOL purged = m_output.Purge(flags);
    if (flags & PURGE_RXCLEAR) {
        const std::lock_guard lock(m_receiveMutex);
        m_queue.Clear();
        purged = m_driver.Flush(TCIFLUSH) && purged;
    }
    return IsGone() ? FailWith(ERROR_DEVICE_NOT_CONNECTED) : purged;
}

std::shared_ptr<ICommLines> CCommPort::Lines() {
    return m_otherLines ? m_otherLines
                        : std::shared_ptr<ICommLines>(shared_from_this(), &m_driverLines);
}

// ---- The hangup handle

HANDLE CCommPort::HangupHandle() {
    const std::lock_guard lock(m_hangupMutex);
    if (m_bHangupClosed) {
        SetInvalidHandleError();
        return nullptr;
    }
    if (!m_hHangup)
        m_hHangup = RegisterHandle(MakeObject<CCommHangup>(shared_from_this()));
    return m_hHangup;
}

void CCommPort::ForgetHangupHandle() {
    const std::lock_guard lock(m_hangupMutex);
    m_hHangup = nullptr;
}

std::shared_ptr<CTransferObject> OpenCommPort(LPCSTR portName) {
    const std::string path = DevicePathOfPort(portName);
    if (path.empty()) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    auto port = MakeObject<CCommPort>();
    if (!port || !port->Open(path.c_str()))
        return nullptr;
    return port;
}

} // namespace platform
