// CGatheredFile: an output file for many short texts, written by a thread of its own.
//
// Texts gather until 64 KiB are there or the oldest of them is a second old; then they go to the
// file in one write, so that a crash loses no more than a second and the thread that has the texts
// is not held up by the disk. With nothing gathered nobody wakes up. The thread lives from Open to
// Close. One thread opens, appends and closes; it owns the object.
#pragma once

#include "common/CriticalSection.h"
#include "common/UniqueHandle.h"
#include "platform/Types.h"
#include "terminal/CaptureFile.h"

#include <string>
#include <string_view>

class CGatheredFile {
  public:
    CGatheredFile() = default;
    CGatheredFile(const CGatheredFile&) = delete;
    CGatheredFile& operator=(const CGatheredFile&) = delete;
    ~CGatheredFile() { Close(); }

    // Creates the file as CCaptureFile does. FALSE, with the last error set, when that fails.
    BOOL Open(const std::string& fileName);

    // Adds a line, with CR LF behind it. FALSE, with the last error set, once the file has not
    // taken what was written; the line is then dropped. With 16 MiB on their way it waits, with the
    // console served, for a file that takes them; FALSE with ERROR_NOT_ENOUGH_QUOTA for one that
    // takes less than 64 KiB in two seconds.
    BOOL AppendLine(std::string_view line);

    // Has what is gathered written without waiting for more of it; does not wait for that.
    void WriteSoon();

    // Nothing will be added any more: TRUE once all is written, or the file has failed; FALSE
    // after so many milliseconds. Harmless when closed.
    BOOL Finish(DWORD milliseconds);

    // Writes what is gathered, for as long as the file takes some of it. FALSE, with the last error
    // set, when the file does not hold all that was added. Harmless when closed.
    BOOL Close();

  private:
    static DWORD WriteThreadProc(LPVOID gatheredFile);
    void WriteUntilClosed();
    void WriteGathered();
    void NoteWritten(std::size_t count);
    void NoteFailure(DWORD error);
    DWORD WaitForRoom();

    CCaptureFile m_file;
    std::string m_strWriting; // the write thread's own

    CCriticalSection m_CritSec; // for the three that follow
    std::string m_strGathered;
    std::size_t m_nWriting = 0; // bytes that the write thread has still to write
    DWORD m_dwWriteError = 0;

    CUniqueHandle m_hBegunEvent; // something is gathered
    CUniqueHandle m_hFullEvent;  // enough for a write, or not to be held any longer
    CUniqueHandle m_hTakenEvent; // the file has taken some, or failed
    CUniqueHandle m_hEndEvent;   // nothing will be added any more
    CUniqueHandle m_hThread;
};
