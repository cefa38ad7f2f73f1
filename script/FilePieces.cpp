#include "script/FilePieces.h"

#include "platform/File.h"

BOOL CFilePieces::Open(const std::string& path) {
    const HANDLE file = CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    m_hFile.Reset(file);
    m_pending = {};
    m_bFailed = file == INVALID_HANDLE_VALUE;
    return !m_bFailed;
}

bool CFilePieces::Next(std::string& piece) {
    piece.clear();
    while (piece.size() < kMaxPiece && !piece.ends_with('\n')) {
        if (m_pending.empty() && !FillBuffer())
            break;
        const std::string_view room = m_pending.substr(0, kMaxPiece - piece.size());
        const std::size_t lineFeed = room.find('\n');
        const std::size_t length = lineFeed == std::string_view::npos ? room.size() : lineFeed + 1;
        piece += room.substr(0, length);
        m_pending.remove_prefix(length);
    }
    return !piece.empty();
}

bool CFilePieces::FillBuffer() {
    DWORD count = 0;
    if (m_bFailed ||
        !ReadFile(m_hFile, m_buffer.data(), static_cast<DWORD>(m_buffer.size()), &count, nullptr)) {
        m_bFailed = true;
        return false;
    }
    m_pending = {m_buffer.data(), count};
    return count != 0;
}
