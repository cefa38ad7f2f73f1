#include "script/CheckFindings.h"

#include "script/ScriptError.h"

void CCheckFindings::Add(DWORD line, DWORD code, std::string_view detail) {
    if (m_findings.size() == kMost)
        return;
    std::string text = ErrorText(code);
    if (!detail.empty())
        text.append(" ").append(detail);
    m_findings.emplace(line, std::move(text));
}
