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
    // taken what was written; the line is then dropped. Waits, with the console served, while the
    // file takes nothing and a mebibyte is on its way.
    BOOL AppendLine(std::string_view line);

    // Writes what is gathered. FALSE, with the last error set, when the file does not hold all that
    // was added. Harmless when closed.
    BOOL Close();

  private:
    static DWORD WriteThreadProc(LPVOID gatheredFile);
    void WriteUntilClosed();
    void WriteGathered();
    DWORD WaitForRoom();

    CCaptureFile m_file;
    std::string m_strWriting; // the write thread's own

    CCriticalSection m_CritSec; // for the two that follow
    std::string m_strGathered;
    DWORD m_dwWriteError = 0;

    CUniqueHandle m_hBegunEvent; // something is gathered
    CUniqueHandle m_hFullEvent;  // enough for a write
    CUniqueHandle m_hTakenEvent; // what was gathered is being written
    CUniqueHandle m_hEndEvent;   // nothing will be added any more
    CUniqueHandle m_hThread;
};
