#include "script/ScriptState.h"

#include "modem/Modem.h"
#include "platform/Clock.h"
#include "platform/Wait.h"
#include "platform/objects/EndRequest.h"

namespace {

// How often the run looks up from its work, in statements and then in milliseconds: often enough
// that a key that ends the session is seen at once, seldom enough to cost nothing.
constexpr DWORD kTurnsBetweenLooks = 1024;
constexpr DWORD kTimeBetweenLooks = 50;

} // namespace

CScriptState::CScriptState(HWND owner)
    : m_Report(owner), m_Symbols(m_Names, m_Report), m_Memory(m_Area, m_Symbols, m_Results),
      m_Reader(m_Names, m_Report) {}

void CScriptState::BeginRun(CVModem* modem) {
    m_pHost = modem;
    m_Report.Begin();
    m_dwLastServed = GetTickCount();
}

std::string_view CScriptState::ReadText(const ScriptWord& text) {
    std::string_view characters;
    if (!m_Memory.ReadText(text.Location(), characters))
        ReportError(ERR_POINTER);
    return characters;
}

void CScriptState::ReportAt(DWORD error, DWORD position) {
    ReportError(error, {}, static_cast<std::int32_t>(m_Reader.LineAt(position)));
}

bool CScriptState::EndIfOver() {
    m_bDeviceGone = m_bDeviceGone || m_pHost->IsDeviceGone();
    if (!m_bDeviceGone && !platform::IsEndRequested())
        return false;
    m_Report.End();
    return true;
}

bool CScriptState::SpendStatement() {
    ++m_nTurns;
    if (m_dwBudget != 0 && m_nTurns > m_dwBudget)
        m_Report.End();
    if (m_nTurns % kTurnsBetweenLooks == 0)
        ServeHost();
    return !HasError();
}

// A script that works without waiting must not keep the console's events waiting, nor go on without
// its device or after the end.
void CScriptState::ServeHost() {
    const DWORD now = GetTickCount();
    if (now - m_dwLastServed < kTimeBetweenLooks)
        return;
    m_dwLastServed = now;
    Sleep(0);
    const HANDLE hangup = m_pHost->GetHangupHandle();
    m_bDeviceGone = hangup != nullptr && WaitForSingleObject(hangup, 0) == WAIT_OBJECT_0;
    if (m_bDeviceGone || platform::IsEndRequested())
        m_Report.End();
}
