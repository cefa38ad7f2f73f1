// The control handler comes in the midst of any wait, also in those of giving back: what it looks
// at is settled before a call that may wait, and giving back twice is harmless.
#include "terminal/Console.h"

#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/EndRequest.h"
#include "platform/terminal/StandardStreams.h"
#include "terminal/StandardError.h"

CConsole* g_pActiveConsole = nullptr;

namespace {

constexpr DWORD kAltPressed = RIGHT_ALT_PRESSED | LEFT_ALT_PRESSED;

bool EndsTheTerminal(DWORD controlEvent) {
    return controlEvent == CTRL_BREAK_EVENT || controlEvent == CTRL_CLOSE_EVENT ||
           controlEvent == CTRL_LOGOFF_EVENT || controlEvent == CTRL_SHUTDOWN_EVENT;
}

// Every event counts as handled, so none of them ends the process: the session ends in order.
BOOL ConsoleCtrlHandler(DWORD controlEvent) {
    if (!EndsTheTerminal(controlEvent))
        return TRUE;
    const bool goesOn =
        controlEvent == CTRL_BREAK_EVENT && g_pActiveConsole && g_pActiveConsole->OutlivesBreak();
    // First, so that the time that a stuck terminal takes counts.
    if (!goesOn)
        platform::RequestEnd();
    if (g_pActiveConsole)
        g_pActiveConsole->Restore();
    // The end may have been asked for meanwhile; and the run does not wait for a stuck terminal.
    if (goesOn && !platform::IsEndRequested() && platform::IsErrorReady())
        TellOnStandardError("the run goes on without the screen; Ctrl+C ends it");
    return TRUE;
}

} // namespace

CConsole::~CConsole() {
    Restore();
}

BOOL CConsole::Init() {
    if (m_bActive)
        return TRUE;
    m_bActive = TRUE;
    g_pActiveConsole = this;
    m_bInputEnded = FALSE;
    m_bOutputGone = FALSE;
    if (!m_hReleased)
        m_hReleased.Reset(CreateEventA(nullptr, TRUE, FALSE, nullptr));
    ResetEvent(m_hReleased);
    m_hOutput = GetStdHandle(STD_OUTPUT_HANDLE);
    m_hInput = GetStdHandle(STD_INPUT_HANDLE);
    GetConsoleMode(m_hInput, &m_dwSavedInputMode);
    SetConsoleMode(m_hInput, 0);
    SetConsoleCtrlHandler(ConsoleCtrlHandler, TRUE);
    return m_bActive;
}

void CConsole::Restore() {
    if (!m_bActive)
        return;
    // Cleared first: a control event that comes while the gathered output goes out must not begin
    // a second time.
    m_bActive = FALSE;
    g_pActiveConsole = nullptr;
    SetConsoleMode(m_hInput, m_dwSavedInputMode);
    SetConsoleCtrlHandler(ConsoleCtrlHandler, FALSE);
    SetEvent(m_hReleased);
}

bool CConsole::OutlivesBreak() const {
    return m_bOutlivesBreak && platform::HasTerminal();
}

void CConsole::SetTitle(LPCSTR title) {
    if (m_bActive)
        SetConsoleTitleA(title);
}

BOOL CConsole::WaitForInput(DWORD milliseconds) {
    return WaitForSingleObject(m_hInput, milliseconds) == WAIT_OBJECT_0;
}

BOOL CConsole::ReadKeyEvent(KEY_EVENT_RECORD& key) {
    INPUT_RECORD record = {};
    DWORD count = 0;
    if (!ReadConsoleInputA(m_hInput, &record, 1, &count)) {
        if (GetLastError() == ERROR_HANDLE_EOF)
            m_bInputEnded = TRUE;
        return FALSE;
    }
    if (count != 1 || record.EventType != KEY_EVENT)
        return FALSE;
    key = record.Event.KeyEvent;
    return key.bKeyDown;
}

BOOL CConsole::ReadKey(BYTE* character) {
    if (!m_bActive)
        return FALSE;
    KEY_EVENT_RECORD key;
    if (!ReadKeyEvent(key))
        return FALSE;
    if (key.wRepeatCount != 0)
        m_bRestDropped = FALSE;
    else if (m_bRestDropped)
        return FALSE;
    if (key.uChar.AsciiChar != 0) {
        *character = static_cast<BYTE>(key.uChar.AsciiChar);
        return TRUE;
    }
    if (key.wVirtualKeyCode == VK_F4 && (key.dwControlKeyState & kAltPressed) != 0) {
        Restore();
        return FALSE;
    }
    const DWORD keyValue = static_cast<DWORD>(key.wVirtualScanCode) << 16 | key.wVirtualKeyCode;
    return OnKey(keyValue, character);
}

BOOL CConsole::OnKey(DWORD, BYTE*) {
    return FALSE;
}
