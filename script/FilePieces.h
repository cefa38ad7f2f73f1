// CFilePieces: a file, read byte for byte in pieces that end behind a line feed or at 255 bytes.
//
// Lives for one pass over the file, on one thread; the file is closed with the object.
#pragma once

#include "common/UniqueHandle.h"
#include "platform/Types.h"

#include <array>
#include <string>
#include <string_view>

class CFilePieces {
  public:
    static constexpr std::size_t kMaxPiece = 255;

    // FALSE when the file cannot be read; the last error tells why (see CreateFileA).
    BOOL Open(const std::string& path);

    // Stores the next piece; false at the end of the file and at a read error.
    bool Next(std::string& piece);

    // Whether reading ended before the end of the file.
    bool HasFailed() const { return m_bFailed; }

  private:
    bool FillBuffer();

    CUniqueHandle m_hFile;
    std::array<char, 4096> m_buffer;
    std::string_view m_pending; // read, but not handed out yet
    bool m_bFailed = false;
};
