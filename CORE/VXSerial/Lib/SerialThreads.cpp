// The worker threads of CVSerial: their start and stop, and the write thread itself. It takes each
// chunk out of the buffer before it writes it, so that callers can refill the buffer meanwhile; a
// flush that comes between the two is kept out by the hand-over lock.
#include "CORE/VXSerial/Lib/OverlappedRecord.h"
#include "CORE/VXSerial/Lib/Serial.h"
#include "CORE/VXSerial/Lib/SerialReport.h"

#include "diagnostics/DebugReport.h"
#include "platform/Error.h"
#include "platform/Thread.h"

#include <algorithm>
#include <memory>
#include <new>

HANDLE CVSerial::CreateOwnThread(LPTHREAD_START_ROUTINE routine, LPVOID argument, DWORD dwFlags) {
    ++m_nUsers;
    const HANDLE thread = CreateThread(nullptr, 0, routine, argument, dwFlags, nullptr);
    if (!thread)
        --m_nUsers;
    return thread;
}

BOOL CVSerial::StartThreads() {
    DEBUG_ASSERT(IsOpen());
    if (!StartWriteThread()) {
        DebugReport("CVSerial::StartThreads() - Failure starting the write thread");
        return FALSE;
    }
    if (!StartCommNotifyThread()) {
        DEBUG_VERIFY(StopWriteThread());
        return FALSE;
    }
    if (!StartModemMonitorThread()) {
        DebugReport("CVSerial::StartThreads() - Failure starting the modem monitor thread");
        DEBUG_VERIFY(StopCommNotifyThread());
        DEBUG_VERIFY(StopWriteThread());
        return FALSE;
    }
    return TRUE;
}

BOOL CVSerial::StopThreads() {
    DEBUG_VERIFY(StopModemMonitorThread());
    DEBUG_VERIFY(StopCommNotifyThread());
    DEBUG_VERIFY(StopWriteThread());
    m_hProgressEvent.Reset();
    return TRUE;
}

BOOL CVSerial::StartWriteThread() {
    DEBUG_ASSERT(IsOpen());
    if (!IsOpen())
        return FALSE;
    if (m_hWriteThread)
        return TRUE;
    DEBUG_ASSERT(!m_hWriteThreadEndEvent);
    if (!CreateWriteEvents()) {
        ReportLastError("CVSerial::StartWriteThread() - CreateEvent()");
        m_hWriteThreadEndEvent.Reset();
        return FALSE;
    }
    m_hWriteThread.Reset(CreateOwnThread(WriteThreadProc, this, 0));
    if (!m_hWriteThread) {
        ReportLastError("CVSerial::StartWriteThread() - CreateThread()");
        DEBUG_VERIFY(CloseHandle(m_hWriteThreadEndEvent));
        m_hProgressEvent.Reset();
        return FALSE;
    }
    return TRUE;
}

// The progress event outlives the thread: those who wait for it have the port open, and do not know
// of a change of the queue sizes in between.
BOOL CVSerial::CreateWriteEvents() {
    m_hWriteThreadEndEvent.Reset(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    if (m_hWriteThreadEndEvent && !m_hProgressEvent)
        m_hProgressEvent.Reset(CreateEventA(nullptr, FALSE, FALSE, nullptr));
    return m_hWriteThreadEndEvent && m_hProgressEvent;
}

BOOL CVSerial::StopWriteThread() {
    if (!m_hWriteThread)
        return TRUE;
    // Ends a write in progress, and leaves the thread nothing to begin another one with.
    DEBUG_VERIFY(Flush(_QUE_TX));
    DEBUG_ASSERT(m_hWriteThreadEndEvent);
    DEBUG_VERIFY(SetEvent(m_hWriteThreadEndEvent));
    if (WaitForSingleObject(m_hWriteThread, kThreadEndTimeout) != WAIT_OBJECT_0) {
        DebugReport("CVSerial::StopWriteThread() - Forcibly terminating the write thread");
        DEBUG_VERIFY(TerminateThread(m_hWriteThread, 0));
    }
    DEBUG_VERIFY(CloseHandle(m_hWriteThread));
    DEBUG_VERIFY(CloseHandle(m_hWriteThreadEndEvent));
    return TRUE;
}

DWORD CVSerial::WriteThreadProc(LPVOID pObject) {
    DEBUG_ASSERT(pObject);
    if (!pObject)
        return 0;
    auto* const object = static_cast<CVSerial*>(pObject);
    const DWORD result = object->RunWriteThread();
    object->LetGo();
    return result;
}

DWORD CVSerial::RunWriteThread() {
    DEBUG_VERIFY(SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_ABOVE_NORMAL));
    const HANDLE waitSet[] = {m_hWriteThreadEndEvent, m_cvTXBuffer.GetDataEvent()};
    DWORD capacity = 0;
    m_cvTXBuffer.GetBufferStatus(&capacity, nullptr, nullptr);
    // A quarter, so that callers can refill the rest while it is on the wire; a tiny buffer goes
    // out byte by byte.
    const DWORD size = std::max<DWORD>(capacity >> 2, 1);
    const std::unique_ptr<BYTE[]> chunk(new (std::nothrow) BYTE[size]);
    if (!chunk) {
        DebugReport("CVSerial::WriteThreadProc() - Memory allocation error");
        return 0xFFFFFFFF;
    }
    while (WaitForMultipleObjects(2, waitSet, FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
        // For a thread that was given up the wait fails.
        while (WriteNextChunk(chunk.get(), size) != 0 &&
               WaitForSingleObject(m_cvTXBuffer.GetDataEvent(), 0) == WAIT_OBJECT_0)
            continue;
    }
    return 0;
}

// Takes a chunk out of the transmit buffer and writes it; returns the bytes taken.
DWORD CVSerial::WriteNextChunk(BYTE* chunk, DWORD dwSize) {
    const DWORD count = m_bOverlapped ? WriteOverlapped(chunk, dwSize) : WritePlain(chunk, dwSize);
    if (count == 0)
        return 0;
    m_dwInHand = 0;
    DEBUG_VERIFY(SetEvent(m_hProgressEvent));
    return count;
}

// The hand-over lock is held.
DWORD CVSerial::TakeChunk(BYTE* chunk, DWORD dwSize) {
    const DWORD count = m_cvTXBuffer.Read(chunk, dwSize, TRUE);
    if (count == 0)
        return 0;
    m_dwInHand = count;
    DEBUG_VERIFY(SetEvent(m_hProgressEvent));
    return count;
}

DWORD CVSerial::WriteOverlapped(BYTE* chunk, DWORD dwSize) {
    COverlappedRecord& record = COverlappedRecord::ForWrites();
    DWORD dwCount = 0;
    DWORD dwWritten = 0;
    BOOL isDone = FALSE;
    {
        // The start does not block, so that a flush has to wait for it only briefly, and then finds
        // a write that it can end.
        const CLock handOver(m_HandOverCritSec);
        dwCount = TakeChunk(chunk, dwSize);
        if (dwCount == 0)
            return 0;
        isDone = WriteFile(m_hPort, chunk, dwCount, &dwWritten, record.Get());
    }
    if (!isDone && GetLastError() != ERROR_IO_PENDING) {
        ReportLastError("CVSerial::WriteThreadProc() - WriteFile()");
    } else if (!isDone && !GetOverlappedResult(m_hPort, record.Get(), &dwWritten, TRUE)) {
        ReportLastError("CVSerial::WriteThreadProc() - GetOverlappedResult()");
    } else {
        DEBUG_ASSERT(dwCount == dwWritten);
    }
    record.Reset();
    return dwCount;
}

DWORD CVSerial::WritePlain(BYTE* chunk, DWORD dwSize) {
    DWORD dwCount = 0;
    {
        const CLock handOver(m_HandOverCritSec);
        dwCount = TakeChunk(chunk, dwSize);
    }
    if (dwCount == 0)
        return 0;
    DWORD dwWritten = 0;
    if (!WriteFile(m_hPort, chunk, dwCount, &dwWritten, nullptr)) {
        ReportLastError("CVSerial::WriteThreadProc() - WriteFile()");
        return dwCount;
    }
    DEBUG_ASSERT(dwCount == dwWritten);
    return dwCount;
}
