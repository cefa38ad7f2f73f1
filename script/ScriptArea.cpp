#include "script/ScriptArea.h"

#include <new>

bool CScriptArea::Reserve() {
    m_bytes.reset(new (std::nothrow) BYTE[kCapacity]());
    m_marks.reset(new (std::nothrow) BYTE[kCapacity]());
    m_homes.reset(new (std::nothrow) WORD[kCapacity / 2]());
    m_dwUsed = kFirstUsed;
    m_pLimit = kFirstUsed;
    m_pHeap = kStart;
    return m_bytes != nullptr && m_marks != nullptr && m_homes != nullptr;
}

void CScriptArea::MakeElements(DWORD position, DWORD count) {
    for (DWORD index = 0; index < count; ++index) {
        SetHome(position + kWordSize * index, kNoHome);
        SetHome(position + kWordSize * index + 2, 0);
    }
}

void CScriptArea::Clear(DWORD position, DWORD count) {
    std::memset(Bytes() + position, 0, count);
    Unmark(position, count);
}

void CScriptArea::Unmark(DWORD position, DWORD count) {
    std::memset(m_marks.get() + position, 0, count);
}

bool CScriptArea::GrowArea(DWORD steps) {
    if (steps > (kCapacity - m_dwUsed) / kStep)
        return false;
    m_dwUsed += steps * kStep;
    m_pLimit = kStart + m_dwUsed - kReadBuffer;
    return true;
}
