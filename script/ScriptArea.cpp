#include "script/ScriptArea.h"

#include <new>

bool CScriptArea::Reserve() {
    m_bytes.reset(new (std::nothrow) BYTE[CAPACITY]());
    m_marks.reset(new (std::nothrow) BYTE[CAPACITY]());
    m_homes.reset(new (std::nothrow) WORD[CAPACITY / 2]());
    m_dwUsed = FIRST_USED;
    m_pLimit = FIRST_USED;
    m_pHeap = START;
    return m_bytes != nullptr && m_marks != nullptr && m_homes != nullptr;
}

void CScriptArea::MakeElements(DWORD position, DWORD count) {
    for (DWORD index = 0; index < count; ++index) {
        SetHome(position + WORD_SIZE * index, NO_HOME);
        SetHome(position + WORD_SIZE * index + 2, 0);
    }
}

bool CScriptArea::GrowArea(DWORD steps) {
    if (steps > (CAPACITY - m_dwUsed) / STEP)
        return false;
    m_dwUsed += steps * STEP;
    m_pLimit = START + m_dwUsed - READ_BUFFER;
    return true;
}
