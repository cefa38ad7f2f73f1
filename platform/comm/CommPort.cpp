#include "platform/comm/CommPort.h"

#include "platform/Error.h"
#include "platform/comm/CommHangup.h"
#include "platform/objects/MakeObject.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr DWORD QUEUE_SIZE_AT_OPENING = 4096;
constexpr DWORD LARGEST_QUEUE_SIZE = 16 * 1024 * 1024;
constexpr WORD PROPERTIES_LENGTH = sizeof(COMMPROP);

// Milliseconds for a transfer of that many bytes, of which 0 and 0 mean no limit.
DWORD TotalLimit(DWORD multiplier, DWORD constant, DWORD count) {
    const std::uint64_t total = std::uint64_t{multiplier} * count + constant;
    return total == 0 ? INFINITE : static_cast<DWORD>(std::min<std::uint64_t>(total, INFINITE - 1));
}

// How long a read may wait for its first byte; 0: not at all.
DWORD ReadLimit(const COMMTIMEOUTS& timeouts, DWORD count) {
    const DWORD multiplier = timeouts.ReadTotalTimeoutMultiplier;
    const DWORD constant = timeouts.ReadTotalTimeoutConstant;
    if (timeouts.ReadIntervalTimeout == MAXDWORD && multiplier == 0 && constant == 0)
        return 0;
    if (timeouts.ReadIntervalTimeout == MAXDWORD && multiplier == MAXDWORD)
        return constant;
    return TotalLimit(multiplier, constant, count);
}

BOOL ResultOf(const OVERLAPPED& overlapped, LPDWORD moved) {
    if (moved)
        *moved = static_cast<DWORD>(overlapped.InternalHigh);
    const DWORD error = static_cast<DWORD>(overlapped.Internal);
    return error == ERROR_SUCCESS ? TRUE : FailWith(error);
}

} // namespace

BOOL CCommPort::Open(LPCSTR path) {
    m_dwOutputQueueSize = QUEUE_SIZE_AT_OPENING;
    if (!m_queue.Resize(QUEUE_SIZE_AT_OPENING))
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    return m_read.Create() && m_write.Create() && m_events.Create() && m_driver.Open(path) &&
           m_waiters.Create(m_driver.Descriptor());
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
    {
        const std::lock_guard lock(m_transmitMutex);
        m_bTransmitClosed = true;
        m_write.End(ERROR_OPERATION_ABORTED);
    }
    {
        const std::lock_guard lock(m_receiveMutex);
        m_bReceiveClosed = true;
        m_read.End(ERROR_OPERATION_ABORTED);
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

// By others than the reader, whose pending read looks for its bytes at the driver.
int CCommPort::FillForTheReader() {
    const int received = FillQueue();
    if (received > 0 && m_read.IsPending())
        StepRead();
    return received;
}

CCommPort::Intake CCommPort::TakeIn() {
    const std::lock_guard lock(m_receiveMutex);
    if (m_bReceiveClosed)
        return Intake::ENDED;
    Intake result = Intake::HELD;
    if (m_queue.Free() > 0 || m_queue.Extend())
        result = FillForTheReader() < 0 ? Intake::ENDED : Intake::TAKEN;
    else if (!m_driver.HoldsSender())
        result = DiscardReceived();
    m_bAskDriver = true;
    return result;
}

CCommPort::Intake CCommPort::DiscardReceived() {
    BYTE unwanted[QUEUE_SIZE_AT_OPENING];
    const int received = ReceiveFromDriver(unwanted, sizeof unwanted);
    if (received < 0)
        return Intake::ENDED;
    return received > 0 ? Intake::DISCARDED : Intake::TAKEN;
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
    OVERLAPPED own{};
    {
        const std::lock_guard lock(m_receiveMutex);
        if (m_bReceiveClosed)
            return FailWith(ERROR_INVALID_HANDLE);
        if (m_read.IsPending())
            return FailWith(ERROR_INVALID_PARAMETER);
        const int taken = TakeReceived(buffer, count);
        if (taken < 0)
            return FALSE;
        const DWORD limit = ReadLimit(m_readTimeouts, count);
        if (taken > 0 || count == 0 || limit == 0) {
            *read = static_cast<DWORD>(taken);
            if (overlapped)
                RecordTransfer(overlapped, ERROR_SUCCESS, *read);
            return TRUE;
        }
        m_target = static_cast<BYTE*>(buffer);
        m_read.Begin(overlapped ? overlapped : &own, count, 0, limit);
    }
    return overlapped ? FailWith(ERROR_IO_PENDING) : FinishOwn(Receiving(), own, read);
}

void CCommPort::StepRead() {
    const int taken = TakeReceived(m_target, m_read.Left());
    if (taken == 0)
        return;
    if (taken > 0)
        m_read.Advance(static_cast<DWORD>(taken));
    m_read.End(taken > 0 ? ERROR_SUCCESS : GetLastError());
}

// ---- Sending

BOOL CCommPort::Write(const void* buffer, DWORD count, LPDWORD written, OVERLAPPED* overlapped) {
    OVERLAPPED own{};
    {
        const std::lock_guard lock(m_transmitMutex);
        if (m_bTransmitClosed)
            return FailWith(ERROR_INVALID_HANDLE);
        if (m_write.IsPending())
            return FailWith(ERROR_INVALID_PARAMETER);
        if (IsGone())
            return FailWith(ERROR_DEVICE_NOT_CONNECTED);
        const int sent = m_driver.Send(buffer, count);
        if (sent < 0)
            return FALSE;
        ++m_dwWrites;
        if (static_cast<DWORD>(sent) == count) {
            *written = count;
            if (overlapped)
                RecordTransfer(overlapped, ERROR_SUCCESS, count);
            return TRUE;
        }
        m_source = static_cast<const BYTE*>(buffer);
        m_write.Begin(overlapped ? overlapped : &own, count, static_cast<DWORD>(sent),
                      TotalLimit(m_writeTimeouts.WriteTotalTimeoutMultiplier,
                                 m_writeTimeouts.WriteTotalTimeoutConstant, count));
    }
    return overlapped ? FailWith(ERROR_IO_PENDING) : FinishOwn(Sending(), own, written);
}

void CCommPort::StepWrite() {
    if (IsGone())
        return m_write.End(ERROR_DEVICE_NOT_CONNECTED);
    const int sent = m_driver.Send(m_source + m_write.Done(), m_write.Left());
    if (sent < 0)
        return m_write.End(GetLastError());
    ++m_dwWrites;
    m_write.Advance(static_cast<DWORD>(sent));
    if (m_write.Left() == 0)
        m_write.End(ERROR_SUCCESS);
}

// ---- Pending transfers

BOOL CCommPort::GetResult(OVERLAPPED* overlapped, LPDWORD transferred, BOOL wait) {
    if (!Finish(Sending(), overlapped, wait) || !Finish(Receiving(), overlapped, wait) ||
        !m_events.Finish(overlapped, wait))
        return FailWith(ERROR_IO_INCOMPLETE);
    return ResultOf(*overlapped, transferred);
}

BOOL CCommPort::FinishOwn(const Direction& direction, OVERLAPPED& own, LPDWORD moved) {
    Finish(direction, &own, TRUE);
    return ResultOf(own, moved);
}

// Carries the transfer on if it is this direction's; false when it is not finished and must not be
// waited for.
bool CCommPort::Finish(const Direction& direction, const OVERLAPPED* overlapped, BOOL wait) {
    std::unique_lock lock(direction.mutex);
    while (direction.transfer.IsPending(overlapped)) {
        (this->*direction.step)();
        if (!direction.transfer.IsPending(overlapped))
            return true;
        if (direction.transfer.Remaining() == 0)
            direction.transfer.End(ERROR_SUCCESS);
        else if (!wait)
            return false;
        else
            WaitForProgress(direction, lock, overlapped);
    }
    return true;
}

void CCommPort::WaitForProgress(const Direction& direction, std::unique_lock<std::mutex>& lock,
                                const OVERLAPPED* overlapped) {
    const DWORD limit = direction.transfer.Remaining();
    direction.transfer.EnterWait();
    lock.unlock();
    const int events = WaitForDescriptor(m_driver.Descriptor(), direction.events, limit,
                                         direction.transfer.AbortDescriptor());
    const DWORD error = events < 0 ? GetLastError() : ERROR_SUCCESS;
    lock.lock();
    direction.transfer.LeaveWait();
    if (events > 0 && (events & (POLLHUP | POLLERR)) != 0)
        m_driver.SetGone();
    if (events < 0 && direction.transfer.IsPending(overlapped))
        direction.transfer.End(error);
}

// ---- State

BOOL CCommPort::GetProperties(COMMPROP& properties) {
    if (properties.wPacketLength != PROPERTIES_LENGTH)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    properties = {};
    properties.wPacketLength = PROPERTIES_LENGTH;
    properties.dwCurrentTxQueue = m_dwOutputQueueSize;
    const std::lock_guard lock(m_receiveMutex);
    properties.dwCurrentRxQueue = m_queue.Size();
    return TRUE;
}

BOOL CCommPort::SetQueueSizes(DWORD input, DWORD output) {
    if (input < 1 || input > LARGEST_QUEUE_SIZE || output < 1 || output > LARGEST_QUEUE_SIZE)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    const std::lock_guard lock(m_receiveMutex);
    if (!m_queue.Resize(input))
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    m_dwOutputQueueSize = output;
    return TRUE;
}

BOOL CCommPort::SetTimeouts(const COMMTIMEOUTS& timeouts) {
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    {
        const std::lock_guard lock(m_receiveMutex);
        m_readTimeouts = timeouts;
    }
    const std::lock_guard lock(m_transmitMutex);
    m_writeTimeouts = timeouts;
    return TRUE;
}

// Costs no system call while a reader works the queue off: the driver is asked when the queue is
// empty, when its last fill left bytes in the driver, and when nothing was taken since it was last
// asked.
BOOL CCommPort::CountReceived(DWORD& count) {
    const std::lock_guard lock(m_receiveMutex);
    if (m_queue.IsEmpty() && FillForTheReader() < 0)
        return FALSE;
    count = m_queue.Count();
    DWORD waiting = 0;
    if (count > 0 && m_bAskDriver && m_driver.CountInput(waiting))
        count += waiting;
    m_bAskDriver = true;
    return TRUE;
}

// Bytes that are handed over meanwhile may be counted twice, but none is left out.
BOOL CCommPort::CountUnsent(DWORD& count) {
    count = m_write.Left();
    const DWORD writes = m_dwWrites;
    if (writes == m_dwDrained)
        return TRUE;
    DWORD waiting = 0;
    if (!m_driver.CountOutput(waiting))
        return FALSE;
    if (waiting == 0)
        m_dwDrained = writes;
    count += waiting;
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
        (!errors || m_driver.TakeErrors(found)) && (!status || CountUnsent(unsent));
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
    BOOL purged = TRUE;
    if (flags & (PURGE_TXABORT | PURGE_TXCLEAR)) {
        const std::lock_guard lock(m_transmitMutex);
        if (flags & PURGE_TXABORT)
            m_write.End(ERROR_OPERATION_ABORTED);
        if (flags & PURGE_TXCLEAR)
            purged = m_driver.Flush(TCOFLUSH);
    }
    if (flags & (PURGE_RXABORT | PURGE_RXCLEAR)) {
        const std::lock_guard lock(m_receiveMutex);
        if (flags & PURGE_RXABORT)
            m_read.End(ERROR_OPERATION_ABORTED);
        if (flags & PURGE_RXCLEAR) {
            m_queue.Clear();
            purged = m_driver.Flush(TCIFLUSH) && purged;
        }
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
