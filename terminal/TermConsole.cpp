#include "terminal/TermConsole.h"

#include "modem/Modem.h"
#include "platform/Console.h"
#include "terminal/LineMenus.h"

#include <cstring>

namespace {

// F5 and F6 open a menu inside a menu. Nobody types that many; a paste might.
constexpr int kDeepestMenu = 16;

} // namespace

BOOL CTermConsole::OnKey(DWORD dwKey, BYTE* pbyChar) {
    SendTyped();

    const WORD key = static_cast<WORD>(dwKey & 0xFFFF);
    if ((key == VK_F5 || key == VK_F6) && m_nMenuDepth < kDeepestMenu) {
        ++m_nMenuDepth;
        if (key == VK_F5)
            BaudMenu(*m_pModem, *this);
        else
            FlowMenu(*m_pModem, *this);
        --m_nMenuDepth;
    }
    return CAnsiConsole::OnKey(dwKey, pbyChar);
}

void CTermConsole::PutText(std::span<const BYTE> bytes) {
    const BYTE* next = bytes.data();
    const BYTE* const end = next + bytes.size();
    while (next != end) {
        if (!m_bInEscape) {
            const BYTE* const text = next;
            const void* const escape =
                std::memchr(text, kEscape, static_cast<std::size_t>(end - text));
            next = escape ? static_cast<const BYTE*>(escape) : end;
            WriteText(text, static_cast<DWORD>(next - text));
        }
        while (next != end) {
            PutChar(*next++);
            if (!m_bInEscape)
                break;
        }
    }
}

void CTermConsole::TypeChar(BYTE byChar) {
    if (m_nTyped == m_szTyped.size())
        SendTyped();
    m_szTyped[m_nTyped++] = static_cast<char>(byChar);
}

void CTermConsole::SendTyped() {
    if (m_nTyped == 0)
        return;
    m_pModem->Write(m_szTyped.data(), static_cast<DWORD>(m_nTyped));
    m_nTyped = 0;
}
