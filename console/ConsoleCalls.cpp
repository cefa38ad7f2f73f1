// The published console calls: they check what they are given and hand it on to the one session of
// the process, which is made when the first of them needs it.
#include "console/Console.h"

#include "console/ConsoleSession.h"
#include "console/ConsoleSignals.h"
#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"

#include <cstdlib>
#include <new>

#include <unistd.h>

namespace platform {
namespace {

// Room for an object that is made when the console is first asked for and outlives its last user,
// static objects included. It lies in memory that takes nothing until it is used.
template <class Object> class CImmortal {
  public:
    template <class... Arguments> void Make(Arguments&... arguments) {
        if constexpr (sizeof...(Arguments) == 0)
            new (m_room) Object; // without (), which would write over all of it
        else
            new (m_room) Object(arguments...);
    }
    Object& Get() { return *std::launder(reinterpret_cast<Object*>(m_room)); }

  private:
    alignas(Object) unsigned char m_room[sizeof(Object)];
};

// At fixed addresses, so that a call needs neither a lock nor a look-up.
CImmortal<CConsoleInput> g_input;
CImmortal<CConsoleOutput> g_output;
CImmortal<CConsoleSession> g_session;

// Until the handles are given out, values that no caller can have.
constinit HANDLE g_hInput = &g_hInput;
constinit HANDLE g_hOutput = &g_hOutput;

constexpr DWORD kModeTakenOver = 0;
constexpr DWORD kModeShell = 7; // line by line, echoed, with keys that are signals

bool RegisterBoth() {
    static const bool registered = [] {
        g_input.Make();
        g_output.Make();
        g_session.Make(g_input.Get(), g_output.Get());
        g_session.Get().Use(STDIN_FILENO, STDOUT_FILENO, std::getenv("TERM"));
        const HANDLE hInput = RegisterImmortal(g_input.Get());
        const HANDLE hOutput = RegisterImmortal(g_output.Get());
        if (hInput == nullptr || hOutput == nullptr)
            return false;
        g_hInput = hInput;
        g_hOutput = hOutput;
        std::atexit([] { g_session.Get().GiveBackAtExit(); });
        return true;
    }();
    return registered;
}

BOOL Report(LPDWORD counter, DWORD count) {
    if (counter != nullptr)
        *counter = count;
    return TRUE;
}

} // namespace

CConsoleSession* TheConsoleSession() {
    return RegisterBoth() ? &g_session.Get() : nullptr;
}

// One that has been hung up answers no question.
bool HasTerminal() {
    return isatty(STDIN_FILENO) != 0 || isatty(STDOUT_FILENO) != 0;
}

bool IsOutputLost() {
    return GetStdHandle(STD_OUTPUT_HANDLE) == g_hOutput && g_output.Get().IsLost();
}

void EndOnSignals() {
    consolesignals::KeepForEnd();
}

void EndBySignal() {
    consolesignals::EndBySignal();
}

} // namespace platform

using namespace platform;

HANDLE GetStdHandle(DWORD nStdHandle) {
    if (nStdHandle != STD_INPUT_HANDLE && nStdHandle != STD_OUTPUT_HANDLE) {
        SetLastError(ERROR_INVALID_HANDLE);
        return INVALID_HANDLE_VALUE;
    }
    if (!RegisterBoth())
        return INVALID_HANDLE_VALUE;
    return nStdHandle == STD_INPUT_HANDLE ? g_hInput : g_hOutput;
}

BOOL GetConsoleMode(HANDLE hConsoleHandle, LPDWORD lpMode) {
    if (hConsoleHandle != g_hInput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (lpMode == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    *lpMode = g_session.Get().IsTakenOver() ? kModeTakenOver : kModeShell;
    return TRUE;
}

BOOL SetConsoleMode(HANDLE hConsoleHandle, DWORD dwMode) {
    if (hConsoleHandle != g_hInput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (dwMode != kModeTakenOver && dwMode != kModeShell)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (dwMode == kModeTakenOver)
        g_session.Get().TakeOver();
    else
        g_session.Get().GiveBack();
    return TRUE;
}

BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE HandlerRoutine, BOOL Add) {
    if (!RegisterBoth())
        return FALSE;
    const PHANDLER_ROUTINE present = g_session.Get().Handler();
    if (HandlerRoutine == nullptr || (!Add && HandlerRoutine != present))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (Add && present != nullptr)
        return FailWith(ERROR_NOT_ENOUGH_MEMORY);
    g_session.Get().SetHandler(Add ? HandlerRoutine : nullptr);
    return TRUE;
}

BOOL SetConsoleTitleA(LPCSTR lpConsoleTitle) {
    if (lpConsoleTitle == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    if (!RegisterBoth())
        return FALSE;
    g_session.Get().SetTitle(lpConsoleTitle);
    return TRUE;
}

BOOL ReadConsoleInputA(HANDLE hConsoleInput, INPUT_RECORD* lpBuffer, DWORD nLength,
                       LPDWORD lpNumberOfEventsRead) {
    if (hConsoleInput != g_hInput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (lpBuffer == nullptr || nLength == 0)
        return FailWith(ERROR_INVALID_PARAMETER);
    for (;;) {
        const CConsoleInput::Taken taken = g_input.Get().Take(*lpBuffer);
        if (taken == CConsoleInput::Taken::Record)
            return Report(lpNumberOfEventsRead, 1);
        if (taken == CConsoleInput::Taken::End)
            return FailWith(ERROR_HANDLE_EOF);
        if (WaitForSingleObject(hConsoleInput, INFINITE) != WAIT_OBJECT_0)
            return FALSE;
    }
}

BOOL WriteConsoleA(HANDLE hConsoleOutput, LPCVOID lpBuffer, DWORD nNumberOfCharsToWrite,
                   LPDWORD lpNumberOfCharsWritten, LPVOID) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (!g_output.Get().Write(static_cast<const BYTE*>(lpBuffer), nNumberOfCharsToWrite))
        return FailWith(ERROR_WRITE_FAULT);
    return Report(lpNumberOfCharsWritten, nNumberOfCharsToWrite);
}

BOOL GetConsoleScreenBufferInfo(HANDLE hConsoleOutput, CONSOLE_SCREEN_BUFFER_INFO* lpInfo) {
    if (hConsoleOutput != g_hOutput || !g_output.Get().IsTerminal())
        return FailWith(ERROR_INVALID_HANDLE);
    if (lpInfo == nullptr)
        return FailWith(ERROR_INVALID_PARAMETER);
    g_output.Get().GetInfo(*lpInfo);
    return TRUE;
}

BOOL SetConsoleCursorPosition(HANDLE hConsoleOutput, COORD dwCursorPosition) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    return g_output.Get().SetPosition(dwCursorPosition) ? TRUE : FailWith(ERROR_INVALID_PARAMETER);
}

BOOL SetConsoleWindowInfo(HANDLE hConsoleOutput, BOOL, const SMALL_RECT* lpConsoleWindow) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (lpConsoleWindow == nullptr || lpConsoleWindow->Left < 0 || lpConsoleWindow->Top < 0)
        return FailWith(ERROR_INVALID_PARAMETER);
    return TRUE;
}

BOOL FillConsoleOutputCharacterA(HANDLE hConsoleOutput, char cCharacter, DWORD nLength,
                                 COORD dwWriteCoord, LPDWORD lpNumberOfCharsWritten) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    const int count = g_output.Get().Fill(cCharacter, nLength, dwWriteCoord);
    return count < 0 ? FailWith(ERROR_INVALID_PARAMETER)
                     : Report(lpNumberOfCharsWritten, static_cast<DWORD>(count));
}

BOOL FillConsoleOutputAttribute(HANDLE hConsoleOutput, WORD wAttribute, DWORD nLength,
                                COORD dwWriteCoord, LPDWORD lpNumberOfAttrsWritten) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    if (!g_output.Get().ColourFill(wAttribute, nLength, dwWriteCoord))
        return FailWith(ERROR_NOT_SUPPORTED);
    return Report(lpNumberOfAttrsWritten, nLength);
}

BOOL SetConsoleTextAttribute(HANDLE hConsoleOutput, WORD wAttributes) {
    if (hConsoleOutput != g_hOutput)
        return FailWith(ERROR_INVALID_HANDLE);
    g_output.Get().SetAttribute(wAttributes);
    return TRUE;
}
