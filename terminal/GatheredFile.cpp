#include "terminal/GatheredFile.h"

#include "platform/Error.h"

#include <array>

namespace {

// What one write is worth, and how long a line may wait for that much to gather.
constexpr std::size_t kWriteSize = std::size_t{64} << 10;
constexpr DWORD kLongestHeld = 1000;

// Gathered while the file takes nothing.
constexpr std::size_t kMostGathered = std::size_t{1} << 20;

HANDLE MakeEvent(BOOL manualReset) {
    return CreateEventA(nullptr, manualReset, FALSE, nullptr);
}

} // namespace

BOOL CGatheredFile::Open(const std::string& fileName) {
    m_hBegunEvent.Reset(MakeEvent(FALSE));
    m_hFullEvent.Reset(MakeEvent(FALSE));
    m_hTakenEvent.Reset(MakeEvent(FALSE));
    m_hEndEvent.Reset(MakeEvent(TRUE));
    if (!m_hBegunEvent || !m_hFullEvent || !m_hTakenEvent || !m_hEndEvent)
        return FALSE;
    if (!m_file.Open(fileName))
        return FALSE;
    m_hThread.Reset(CreateThread(nullptr, 0, WriteThreadProc, this, 0, nullptr));
    return m_hThread ? TRUE : FALSE;
}

BOOL CGatheredFile::AppendLine(std::string_view line) {
    constexpr std::string_view kLineEnd = "\r\n";
    const DWORD error = WaitForRoom();
    if (error != ERROR_SUCCESS) {
        SetLastError(error);
        return FALSE;
    }
    const CLock lock(m_CritSec);
    const std::size_t before = m_strGathered.size();
    m_strGathered.append(line).append(kLineEnd);
    if (before == 0)
        SetEvent(m_hBegunEvent);
    if (before < kWriteSize && m_strGathered.size() >= kWriteSize)
        SetEvent(m_hFullEvent);
    return TRUE;
}

// Returns the error of the file, if it has one.
DWORD CGatheredFile::WaitForRoom() {
    for (;;) {
        {
            const CLock lock(m_CritSec);
            if (m_dwWriteError != ERROR_SUCCESS || m_strGathered.size() < kMostGathered)
                return m_dwWriteError;
        }
        if (WaitForSingleObject(m_hTakenEvent, INFINITE) != WAIT_OBJECT_0)
            return GetLastError();
    }
}

BOOL CGatheredFile::Close() {
    if (m_hThread) {
        SetEvent(m_hEndEvent);
        WaitForSingleObject(m_hThread, INFINITE);
        m_hThread.Reset();
    }
    const BOOL closed = m_file.Close();
    if (m_dwWriteError == ERROR_SUCCESS)
        return closed;
    SetLastError(m_dwWriteError);
    return FALSE;
}

DWORD CGatheredFile::WriteThreadProc(LPVOID gatheredFile) {
    static_cast<CGatheredFile*>(gatheredFile)->WriteUntilClosed();
    return 0;
}

void CGatheredFile::WriteUntilClosed() {
    const std::array<HANDLE, 2> begun = {m_hEndEvent, m_hBegunEvent};
    const std::array<HANDLE, 2> full = {m_hEndEvent, m_hFullEvent};
    while (WaitForMultipleObjects(2, begun.data(), FALSE, INFINITE) == WAIT_OBJECT_0 + 1) {
        WaitForMultipleObjects(2, full.data(), FALSE, kLongestHeld);
        WriteGathered();
    }
    WriteGathered();
}

void CGatheredFile::WriteGathered() {
    {
        const CLock lock(m_CritSec);
        m_strWriting.swap(m_strGathered);
        ResetEvent(m_hFullEvent);
    }
    SetEvent(m_hTakenEvent);
    if (!m_file.WriteBytes(m_strWriting)) {
        const DWORD error = GetLastError();
        const CLock lock(m_CritSec);
        m_dwWriteError = error;
        m_strGathered.clear();
        SetEvent(m_hTakenEvent);
    }
    m_strWriting.clear();
}
