// CScriptFile: the characters of a script file, one after the other, with comments taken out.
//
// A byte order mark of UTF-8 at the head of the file is left out.
//
// Lives while a script is tokenized. It reads through the buffer it is given and does not own the
// file. Nothing is reported here: the end of the file is a character like any other, and a byte
// 0xFF in the file reads as its end.
#pragma once

#include "platform/Types.h"

#include <array>

class CScriptFile {
  public:
    static constexpr BYTE kEndOfFile = 0xFF;
    static constexpr DWORD kBufferSize = 512;

    // The buffer holds kBufferSize bytes and outlives this object.
    CScriptFile(HANDLE file, BYTE* buffer) : m_hFile(file), m_buffer(buffer) {}

    // The next character; kEndOfFile from the end on, or when the file cannot be read.
    BYTE ReadChar();

    // The same, where an apostrophe begins a comment: a whole comment reads as the CR that ends its
    // line, the LF follows. kEndOfFile in a comment that nothing ends.
    BYTE ReadCharSkipComment();

    // Gives a character back, to be read next. There is room for two: a comment behind a name gives
    // back its LF, then the reader of the name gives back the CR.
    void PushBack(BYTE character) { m_chPushBack[m_nPushedBack++] = character; }

    // Whether the last kEndOfFile was met inside of a comment.
    bool EndedInComment() const { return m_bEndedInComment; }

  private:
    void FillBuffer();

    HANDLE m_hFile;
    BYTE* m_buffer;
    DWORD m_nReadCount = kBufferSize; // a used-up full buffer asks for the first read
    DWORD m_nReadPos = kBufferSize;
    std::array<BYTE, 2> m_chPushBack{};
    DWORD m_nPushedBack = 0;
    bool m_bEndedInComment = false;
    bool m_bAtHead = true;
};
