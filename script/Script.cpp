#include "script/Script.h"

#include "common/UniqueHandle.h"
#include "modem/Modem.h"
#include "platform/Clock.h"
#include "platform/File.h"
#include "platform/Message.h"
#include "platform/Wait.h"
#include "platform/objects/EndRequest.h"

namespace {

// How often the run looks up from its work, in statements and then in milliseconds: often enough
// that a key that ends the session is seen at once, seldom enough to cost nothing.
constexpr DWORD kTurnsBetweenLooks = 1024;
constexpr DWORD kTimeBetweenLooks = 50;

} // namespace

CVScript::CVScript(HWND owner)
    : m_Report(owner), m_hWndOwner(owner), m_Symbols(m_Names, m_Report),
      m_Memory(m_Area, m_Symbols, m_Results), m_Reader(m_Names, m_Report) {}

CVScript::~CVScript() = default;

DWORD CVScript::Run(LPCSTR path, CVModem* modem) {
    m_pHost = modem;
    m_Report.Begin();
    m_dwLastServed = GetTickCount();
    const HANDLE opened = CreateFileA(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                                      FILE_ATTRIBUTE_NORMAL, nullptr);
    if (opened == INVALID_HANDLE_VALUE) {
        NotifyOwner(true, ERR_OPEN);
        ReportError(ERR_OPEN, path, CScriptReport::NO_LINE);
        return ERR_OPEN;
    }
    CUniqueHandle file(opened);
    if (!m_Area.Reserve() || !m_Symbols.Reserve()) {
        NotifyOwner(true, ERR_MEMORY);
        ReportError(ERR_MEMORY, {}, CScriptReport::NO_LINE);
        return ERR_MEMORY;
    }
    const bool isLoaded = Load(opened);
    file.Reset();
    if (!isLoaded) {
        NotifyOwner(true, ERR_INVALID_FILE);
        return ERR_INVALID_FILE;
    }
    NotifyOwner(false, 0);
    RunMain();
    return 0;
}

void CVScript::NotifyOwner(bool failed, DWORD code) {
    if (m_hWndOwner != nullptr)
        PostMessageA(m_hWndOwner, WM_SCRIPTLOAD, failed ? 1 : 0, static_cast<LPARAM>(code));
}

std::string_view CVScript::ReadText(const ScriptWord& text) {
    std::string_view characters;
    if (!m_Memory.ReadText(text.Location(), characters))
        ReportError(ERR_POINTER);
    return characters;
}

bool CVScript::WriteText(const ScriptWord& target, std::string_view text) {
    if (!GiveElementRoom(target.Location()))
        return false;
    if (m_Memory.WriteText(target.Location(), text))
        return true;
    ReportError(ERR_POINTER);
    return false;
}

bool CVScript::EndIfOver() {
    m_bDeviceGone = m_bDeviceGone || m_pHost->IsDeviceGone();
    if (!m_bDeviceGone && !platform::IsEndRequested())
        return false;
    m_Report.End();
    return true;
}

// Counts a turn of work; false when the run is to end.
bool CVScript::SpendStatement() {
    ++m_nTurns;
    if (m_dwBudget != 0 && m_nTurns > m_dwBudget)
        m_Report.End();
    if (m_nTurns % kTurnsBetweenLooks == 0)
        ServeHost();
    return !HasError();
}

// A script that works without waiting must not keep the console's events waiting, nor go on without
// its device or after the end.
void CVScript::ServeHost() {
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
