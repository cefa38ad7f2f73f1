// Two buffers change places: lines gather in one under the lock while the thread writes the other
// one without it. What is still to be written counts against the bound as well, and every piece
// that the file has taken is told, so that a slow file can be told from one that takes nothing.
#include "terminal/GatheredFile.h"

#include "platform/Error.h"
#include "platform/objects/EndRequest.h"

#include <array>

namespace {

// What one write is worth, and how long a line may wait for that much to gather.
constexpr std::size_t kWriteSize = std::size_t{64} << 10;
constexpr DWORD kLongestHeld = 1000;

// What waits for a file that is slow, and how long the session may then wait for it to take some: a
// log is not worth a terminal that takes no keys.
constexpr std::size_t kMostHeld = std::size_t{16} << 20;
constexpr DWORD kLongestStall = 2000;

// How long the file may still take for the rest once the end of the program has been asked for.
constexpr DWORD kEndGrace = 1500;

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

void CGatheredFile::WriteSoon() {
    const CLock lock(m_CritSec);
    if (!m_strGathered.empty())
        SetEvent(m_hFullEvent);
}

// Returns the error of the file, if it has one, or of the waiting.
DWORD CGatheredFile::WaitForRoom() {
    for (;;) {
        {
            const CLock lock(m_CritSec);
            if (m_dwWriteError != ERROR_SUCCESS || m_strGathered.size() + m_nWriting < kMostHeld)
                return m_dwWriteError;
        }
        if (WaitForSingleObject(m_hTakenEvent, kLongestStall) != WAIT_OBJECT_0)
            return ERROR_NOT_ENOUGH_QUOTA;
    }
}

BOOL CGatheredFile::Finish(DWORD milliseconds) {
    if (!m_hThread)
        return TRUE;
    SetEvent(m_hEndEvent);
    if (WaitForSingleObject(m_hThread, milliseconds) != WAIT_OBJECT_0)
        return FALSE;
    m_hThread.Reset();
    return TRUE;
}

BOOL CGatheredFile::Close() {
    // The thread's writes heed the end; what it works with must outlive it.
    const platform::CEndGrace untilItEnds(INFINITE);
    Finish(INFINITE);
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
        m_nWriting = m_strWriting.size();
        ResetEvent(m_hFullEvent);
    }
    const platform::CEndGrace grace(kEndGrace);
    // In pieces, so that a slow file is seen to take them.
    for (std::string_view rest = m_strWriting; !rest.empty();) {
        const std::string_view piece = rest.substr(0, kWriteSize);
        if (!m_file.WriteBytes(piece)) {
            NoteFailure(GetLastError());
            break;
        }
        NoteWritten(piece.size());
        rest.remove_prefix(piece.size());
    }
    m_strWriting.clear();
}

void CGatheredFile::NoteWritten(std::size_t count) {
    const CLock lock(m_CritSec);
    m_nWriting -= count;
    SetEvent(m_hTakenEvent);
}

void CGatheredFile::NoteFailure(DWORD error) {
    const CLock lock(m_CritSec);
    m_dwWriteError = error;
    m_nWriting = 0;
    m_strGathered.clear();
    SetEvent(m_hTakenEvent);
}
