// CTextFile: a text file, read line by line.
//
// LF and CR LF end a line; no other byte does, Ctrl+Z and NUL included. A byte order mark of UTF-8
// at the head of the file is left out. The file is closed with the
// object. One thread uses an object.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/File.h"

#include <string>
#include <vector>

enum class EReadLine { Line, End, Error };

class CTextFile {
  public:
    // No text anybody means to have read has a longer line; this bounds the memory that a file
    // takes.
    static constexpr std::size_t kMaxLineLength = std::size_t{16} * 1024 * 1024;

    // Opens the file for reading, in place of the one that was open. FALSE when that fails; the
    // last error tells why (see CreateFileA).
    BOOL Open(LPCSTR path);

    // Stores the next line without its end. A last line without an end is a line too. End at the
    // end of the file; Error for a read error, a line longer than kMaxLineLength bytes, or when no
    // file is open, and from then on. The string is empty unless the result is Line. After the
    // first Error the last error tells why: ERROR_NOT_ENOUGH_MEMORY is the line that is too long.
    EReadLine ReadLine(std::string& line);

  private:
    EReadLine TakeLine(std::string& line);
    bool FillBuffer();
    EReadLine Fail(std::string& line);
    EReadLine FailTooLong(std::string& line);

    CUniqueHandle m_hFile;
    std::vector<char> m_buffer;
    std::size_t m_nBegin = 0; // the bytes read but not yet handed out: [m_nBegin, m_nEnd)
    std::size_t m_nEnd = 0;
    bool m_bFailed = true;
    bool m_bAtHead = true;
};
