// CVScript: the script engine. Loads a script, runs its main function, and is done.
//
// The caller makes one for each run and owns it; Run blocks until the script has ended, and it is
// all used from that one thread. There is no way to stop a run from outside: it ends by itself, by
// its first error, when the device is gone, or when its statement budget is used up.
//
// The engine reaches the device through the given CVModem and the user through the platform's
// notification calls. All that a script can reach of this process is what CScriptMemory offers.
//
// It is made of rooms, which ScriptState.h lists; this is the door.
#pragma once

#include "script/ScriptCalls.h"

#include <string>
#include <string_view>

// Posted to the owner window: wParam 1 and the error code in lParam when loading failed, both 0
// when the script is loaded and about to run.
inline constexpr UINT WM_SCRIPTLOAD = 0x8064;

class CVScript final : private CScriptCalls {
  public:
    // The owner, if there is one, is told how loading went and owns the message boxes.
    explicit CVScript(HWND owner = nullptr);
    ~CVScript();

    // Loads the file and runs its main function, once in the engine's life. 0 when main was run,
    // whether or not an error was reported meanwhile; ERR_OPEN, ERR_MEMORY or ERR_INVALID_FILE when
    // it could not be. The user has then been told why.
    DWORD Run(LPCSTR path, CVModem* modem);

    // Ends the run without a word after so many statements; 0, the default: never.
    void SetStatementBudget(DWORD statements) { m_dwBudget = statements; }

    // Whether loading stopped at a line feed without a carriage return before it: the file has the
    // line ends of another system.
    bool HasUnixLineEnds() const { return m_bUnixLineEnds; }

    // Whether the run was ended because the device is gone.
    bool IsDeviceGone() const { return m_bDeviceGone; }

    // --- For the built-in functions, beside which see CScriptState ---

    CVModem& Host() { return *m_pHost; }
    CResultBuffers& Results() { return m_Results; }

    using CScriptState::EndIfOver;
    using CScriptState::HasError;
    using CScriptState::ReadText;
    using CScriptState::ReportError;

    // Replaces the text at a location, cut at 255 characters (in a result buffer, too). FALSE after
    // a report: it stands where a script may not write.
    bool WriteText(const ScriptWord& target, std::string_view text);

    // Whether SendString or SendFile has sent something since the last command.
    bool m_bHasSent = false;

    // Kept for the host; empty when the engine is made.
    std::string m_strApn;
    std::string m_strDialString;
    std::string m_strPassword;
    std::string m_strUserName;

  private:
    DWORD Refuse(DWORD code, std::string_view detail = {});
    bool Load(HANDLE file);
    bool Tokenize(HANDLE file);
    bool RegisterBuiltins();
    bool PreScan();
    bool PreScanFunction(bool& hasMain);
    void RunMain();
    void NotifyOwner(bool failed, DWORD code);
    ScriptWord RunHandler(BuiltinHandler handler, const BuiltinArguments& arguments) override;

    HWND m_hWndOwner;
    bool m_bUnixLineEnds = false;
};
