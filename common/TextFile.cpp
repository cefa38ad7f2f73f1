// Lines are cut out of what was read; one that goes beyond it gathers in the caller's text, which
// is measured before it grows.
#include "common/TextFile.h"

#include "platform/Error.h"

#include <algorithm>
#include <string_view>
#include <utility>

namespace {

// A typical command file is taken in one read.
constexpr std::size_t kReadSize = std::size_t{16} * 1024;

} // namespace

BOOL CTextFile::Open(LPCSTR path) {
    m_nBegin = m_nEnd = 0;
    m_bFailed = true;
    m_hFile.Reset();
    const HANDLE file = CreateFileA(path ? path : "", GENERIC_READ, FILE_SHARE_READ, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return FALSE;
    m_hFile.Reset(file);
    m_buffer.resize(kReadSize);
    m_bFailed = false;
    m_bAtHead = true;
    return TRUE;
}

EReadLine CTextFile::ReadLine(std::string& line) {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    const EReadLine result = TakeLine(line);
    if (std::exchange(m_bAtHead, false) && line.starts_with(kByteOrderMark))
        line.erase(0, kByteOrderMark.size());
    return result;
}

EReadLine CTextFile::TakeLine(std::string& line) {
    line.clear();
    if (m_bFailed)
        return Fail(line);
    for (;;) {
        const auto begin = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_nBegin);
        const auto end = m_buffer.begin() + static_cast<std::ptrdiff_t>(m_nEnd);
        const auto lineFeed = std::find(begin, end, '\n');
        // One byte more than a line may have: the CR of its end, which may be yet to be taken off.
        if (line.size() + static_cast<std::size_t>(lineFeed - begin) > kMaxLineLength + 1)
            return FailTooLong(line);
        line.append(begin, lineFeed);
        if (lineFeed != end) {
            m_nBegin += static_cast<std::size_t>(lineFeed - begin) + 1;
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            return line.size() > kMaxLineLength ? FailTooLong(line) : EReadLine::Line;
        }
        if (!FillBuffer())
            return Fail(line);
        if (m_nEnd == 0 && line.size() > kMaxLineLength)
            return FailTooLong(line);
        if (m_nEnd == 0)
            return line.empty() ? EReadLine::End : EReadLine::Line;
    }
}

// Replaces the buffer's bytes by the file's next ones, none at its end. False when the read failed.
bool CTextFile::FillBuffer() {
    m_nBegin = m_nEnd = 0;
    DWORD count = 0;
    if (!ReadFile(m_hFile, m_buffer.data(), static_cast<DWORD>(m_buffer.size()), &count, nullptr))
        return false;
    m_nEnd = count;
    return true;
}

EReadLine CTextFile::Fail(std::string& line) {
    line.clear();
    m_bFailed = true;
    m_hFile.Reset();
    return EReadLine::Error;
}

EReadLine CTextFile::FailTooLong(std::string& line) {
    Fail(line);
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return EReadLine::Error;
}
