#include "script/ScriptFile.h"

#include "platform/File.h"

#include <string_view>
#include <utility>

BYTE CScriptFile::ReadChar() {
    if (m_nPushedBack > 0)
        return m_chPushBack[--m_nPushedBack];
    if (m_nReadPos < m_nReadCount)
        return m_buffer[m_nReadPos++];
    // A buffer that was not filled was the last one.
    if (m_nReadCount < kBufferSize)
        return kEndOfFile;
    FillBuffer();
    return m_nReadPos == m_nReadCount ? kEndOfFile : m_buffer[m_nReadPos++];
}

void CScriptFile::FillBuffer() {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    m_nReadPos = 0;
    m_nReadCount = 0;
    // A pipe gives what it has; only nothing is its end.
    DWORD count = 0;
    while (
        m_nReadCount < kBufferSize &&
        ReadFile(m_hFile, m_buffer + m_nReadCount, kBufferSize - m_nReadCount, &count, nullptr) &&
        count > 0)
        m_nReadCount += count;
    const std::string_view read(reinterpret_cast<const char*>(m_buffer), m_nReadCount);
    if (std::exchange(m_bAtHead, false) && read.starts_with(kByteOrderMark))
        m_nReadPos = static_cast<DWORD>(kByteOrderMark.size());
}

BYTE CScriptFile::ReadCharSkipComment() {
    const BYTE character = ReadChar();
    if (character != '\'')
        return character;
    BYTE skipped = ReadChar();
    while (skipped != '\n' && skipped != kEndOfFile)
        skipped = ReadChar();
    m_bEndedInComment = skipped == kEndOfFile;
    if (m_bEndedInComment)
        return kEndOfFile;
    PushBack(skipped);
    return '\r';
}
