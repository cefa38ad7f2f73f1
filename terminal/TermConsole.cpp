#include "terminal/TermConsole.h"

#include "console/Console.h"
#include "modem/Modem.h"
#include "terminal/LineMenus.h"

#include <algorithm>
#include <string_view>

namespace {

// F5 and F6 open a menu inside a menu. Nobody types that many; a paste might.
constexpr int kDeepestMenu = 16;

// Memory that is kept for what is typed next; a paste may have taken more.
constexpr std::size_t kKeptRoom = 4096;

// Bytes that have gone and are still kept, because the rest would have to be moved.
constexpr std::size_t kMostSent = std::size_t{1} << 20;

} // namespace

BOOL CTermConsole::OnKey(DWORD key, BYTE* character) {
    SendTyped();

    const WORD code = static_cast<WORD>(key & 0xFFFF);
    if ((code == VK_F5 || code == VK_F6) && m_nMenuDepth < kDeepestMenu) {
        ++m_nMenuDepth;
        if (code == VK_F5)
            BaudMenu(*m_pModem, *this);
        else
            FlowMenu(*m_pModem, *this);
        --m_nMenuDepth;
    }

    const std::string_view sequence = GetKeySequence(code);
    if (GetTypedAhead() == 0 && m_pModem->GetWriteRoom() >= sequence.size())
        return CAnsiConsole::OnKey(key, character);
    m_strTyped += sequence;
    return FALSE;
}

void CTermConsole::SendTyped() {
    const auto count =
        static_cast<DWORD>(std::min<std::size_t>(GetTypedAhead(), m_pModem->GetWriteRoom()));
    if (count != 0)
        m_pModem->Write(m_strTyped.data() + m_nSent, count);
    m_nSent += count;
    ForgetSent();
}

// Input that is always ahead of the device never leaves a moment with nothing typed.
void CTermConsole::ForgetSent() {
    if (m_nSent < std::min(GetTypedAhead(), kMostSent))
        return;
    m_strTyped.erase(0, m_nSent);
    m_nSent = 0;
    if (m_strTyped.empty() && m_strTyped.capacity() > kKeptRoom)
        m_strTyped.shrink_to_fit();
}
