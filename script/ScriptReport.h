// CScriptReport: shows the first error of a run to the user and remembers that there was one.
//
// One for each engine, shared by its parts; used from the script's thread, which it blocks while
// the message box is open. After the first report every operation of the engine returns at once
// with a neutral result, so that the run unwinds; later reports are dropped.
#pragma once

#include "platform/Types.h"
#include "script/ScriptError.h"

#include <string_view>

// Tells the line that is being read; 0 when there is none.
class ILineSource {
  public:
    virtual DWORD CurrentLine() const = 0;

  protected:
    ~ILineSource() = default;
};

class CScriptReport {
  public:
    static constexpr std::int32_t kCurrentLine = 0;
    static constexpr std::int32_t kNoLine = -1;

    explicit CScriptReport(HWND owner) : m_hWndOwner(owner) {}

    // Begins a run: nothing has been reported.
    void Begin();

    // Who tells the current line from now on; null for nobody. The source must outlive its use.
    void SetLineSource(const ILineSource* source) { m_pLines = source; }

    // Reports an error with a detail, which may be empty, and a line number, kCurrentLine or
    // kNoLine. Only the first of a run is shown. Nothing can fail.
    void ReportError(DWORD code, std::string_view detail = {}, std::int32_t line = kCurrentLine);

    // Ends the run as an error does, without a report.
    void End() { m_bError = TRUE; }

    bool HasError() const { return m_bError != FALSE; }

  private:
    BOOL m_bError = FALSE;
    HWND m_hWndOwner;
    BOOL m_bShowErrors = TRUE;
    const ILineSource* m_pLines = nullptr;
};
