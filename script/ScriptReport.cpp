#include "script/ScriptReport.h"

#include "console/MessageBox.h"

#include <string>

void CScriptReport::Begin() {
    m_bError = FALSE;
    m_bShowErrors = TRUE;
}

void CScriptReport::ReportError(DWORD code, std::string_view detail, std::int32_t line) {
    if (m_bShowErrors) {
        const std::string message = ErrorText(code);
        std::string text;
        if (line == kNoLine) {
            text.append(message).append(" ").append(detail).append("\r\n");
        } else {
            if (line == kCurrentLine && m_pLines != nullptr)
                line = static_cast<std::int32_t>(m_pLines->CurrentLine());
            text.append("On line: ").append(std::to_string(line)).append("\n");
            text.append(message).append("\n").append(detail);
        }
        m_bShowErrors = FALSE;
        MessageBoxA(m_hWndOwner, text.c_str(), nullptr, MB_ICONEXCLAMATION | MB_OK);
    }
    m_bShowErrors = FALSE;
    m_bError = TRUE;
}
