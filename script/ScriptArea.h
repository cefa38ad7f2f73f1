// CScriptArea: the region that holds the file's read buffer, the token stream and, above it, the
// value heap.
//
// One for each run, used from the script's thread. A block that never moves, reserved once; what
// grows is the part that is used. Positions are offsets in it. Beside each byte stands a mark, so
// that a word in the heap carries whether it refers to text: the marks of its four bytes are then
// 1, 2, 3, 4. Whatever overwrites one of the bytes takes the mark away. Beside each array element
// stands where its text is kept.
#pragma once

#include "platform/Types.h"
#include "script/ScriptValue.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <string_view>

class CScriptArea {
  public:
    static constexpr DWORD kCapacity = 61440;
    static constexpr DWORD kReadBuffer = 512; // at its front
    static constexpr DWORD kStart = kReadBuffer;
    // What every text buffer holds: 255 characters and a NUL.
    static constexpr DWORD kTextBuffer = 256;
    static constexpr DWORD kTextLength = kTextBuffer - 1;
    static constexpr DWORD kWordSize = 4;

    // Takes the memory, all zero; FALSE when there is none.
    bool Reserve();

    // Adds steps of 1024 bytes to the used part; FALSE, and nothing added, beyond the capacity.
    bool GrowArea(DWORD steps);

    // Whether so near to the end of the used part that it is time to grow.
    bool IsNearLimit(DWORD position) const { return position >= m_pLimit - kMargin; }
    DWORD Limit() const { return m_pLimit; }

    // The heap's top, from which Alloc takes.
    DWORD Heap() const { return m_pHeap; }
    void SetHeap(DWORD position) { m_pHeap = position; }

    // Takes storage from the heap, all zero, and returns its position; 0, and nothing taken, when
    // the region cannot grow that far. A count is made even.
    DWORD Alloc(DWORD count) {
        const DWORD start = AllocRaw(count);
        if (start != 0)
            Clear(start, count);
        return start;
    }
    // The same, contents left as they are, so that a text that stands there can still be copied.
    DWORD AllocRaw(DWORD count) {
        const DWORD start = m_pHeap;
        const DWORD size = (count + 1) & ~DWORD{1};
        if (size >= kCapacity || !MakeRoom(start + size, size))
            return 0;
        m_pHeap = start + size;
        return start;
    }
    // Where the text buffer is that belongs to the array element at an even position: kNoHome when
    // it has none yet, 0 when no element was made there.
    static constexpr DWORD kNoHome = 1;
    DWORD HomeAt(DWORD position) const { return m_homes[position / 2]; }
    void SetHome(DWORD position, DWORD home) { m_homes[position / 2] = static_cast<WORD>(home); }
    // Makes elements of what Alloc has given.
    void MakeElements(DWORD position, DWORD count);

    BYTE* Bytes() { return m_bytes.get(); }
    const BYTE* Bytes() const { return m_bytes.get(); }

    // Words and characters at a position that the caller has checked: all four bytes are below
    // kCapacity.
    ScriptWord LoadWord(DWORD position) const {
        ScriptWord word;
        std::memcpy(&word.value, m_bytes.get() + position, sizeof(word.value));
        DWORD marks = 0;
        std::memcpy(&marks, m_marks.get() + position, sizeof(marks));
        word.text = marks == kTextMarks;
        return word;
    }
    void StoreWord(DWORD position, ScriptWord word) {
        std::memcpy(m_bytes.get() + position, &word.value, sizeof(word.value));
        const DWORD marks = word.text ? kTextMarks : 0;
        std::memcpy(m_marks.get() + position, &marks, sizeof(marks));
    }
    void StoreCharacter(DWORD position, BYTE character) {
        m_bytes[position] = character;
        m_marks[position] = 0;
    }

    // Copies a text, cut at 255 characters and to the room given, into the heap; it may overlap
    // what it is copied to.
    void StoreText(DWORD position, std::string_view text, DWORD room = kTextLength) {
        const DWORD length = std::min(static_cast<DWORD>(text.size()), room);
        if (length > 0)
            std::memmove(Bytes() + position, text.data(), length);
        m_bytes[position + length] = 0;
        Unmark(position, length + 1);
    }
    // Moves a text buffer, its marks left behind.
    void MoveBuffer(DWORD target, DWORD source) {
        std::memmove(Bytes() + target, Bytes() + source, kTextBuffer);
        Unmark(target, kTextBuffer);
    }

  private:
    static constexpr DWORD kStep = 1024;
    static constexpr DWORD kFirstUsed = kReadBuffer + kStep;
    static constexpr DWORD kMargin = 64;
    // 1, 2, 3, 4 in memory, on machines of either byte order.
    static constexpr BYTE kMarkBytes[4] = {1, 2, 3, 4};
    static constexpr DWORD kTextMarks = __builtin_bit_cast(DWORD, kMarkBytes);

    bool MakeRoom(DWORD top, DWORD count) {
        return !IsNearLimit(top) || GrowArea(count / kStep + 1);
    }
    // Each with the size told at run time only: for one that it knows the compiler writes a string
    // instruction, which takes longer to begin than memset takes for a text buffer (measured: a
    // scope's end that keeps a text took half as long again).
    [[gnu::noinline]] void Clear(DWORD position, DWORD count);
    [[gnu::noinline]] void Unmark(DWORD position, DWORD count);

    std::unique_ptr<BYTE[]> m_bytes;
    std::unique_ptr<BYTE[]> m_marks;
    std::unique_ptr<WORD[]> m_homes; // one for two bytes
    DWORD m_dwUsed = kFirstUsed;
    DWORD m_pLimit = kFirstUsed;
    DWORD m_pHeap = kStart;
};
