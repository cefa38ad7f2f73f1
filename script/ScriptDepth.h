// CScriptDepth: one level deeper in the engine's own recursion, for the time of a function.
//
// Scripts nest calls, blocks and expressions as deeply as they like, the thread's stack does not.
// One level takes up to 400 bytes of it in an optimised build and 1600 under the address sanitizer
// (measured: nested calls of built-ins are the worst, then loops in calls), so that 1000 levels
// stay far below the usual 8 MiB. A function that calls itself takes three levels a call, four with
// the call in a block.
#pragma once

#include "platform/Types.h"
#include "script/ScriptReport.h"

class CScriptDepth {
  public:
    static constexpr DWORD kMostLevels = 1000;

    // Converts to false after a report: this is too deep.
    CScriptDepth(DWORD& depth, CScriptReport& report) : m_nDepth(depth) {
        if (++m_nDepth > kMostLevels)
            report.ReportError(ERR_MEMORY, {}, CScriptReport::kNoLine);
    }
    CScriptDepth(const CScriptDepth&) = delete;
    CScriptDepth& operator=(const CScriptDepth&) = delete;
    ~CScriptDepth() { --m_nDepth; }

    explicit operator bool() const { return m_nDepth <= kMostLevels; }

  private:
    DWORD& m_nDepth;
};
