#include "tests/script/ScriptRun.h"

#include "console/MessageBox.h"
#include "platform/Notification.h"

#include <cstdio>
#include <utility>

namespace {

constexpr DWORD kStatements = 1'000'000;
constexpr DWORD kBaudRate = 115200;

CScriptRun* s_run = nullptr; // the one that is told what the user sees

std::string Escape(std::string_view bytes) {
    std::string escaped;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        const char byte = bytes[index];
        const bool isLast = index + 1 == bytes.size();
        char code[8] = {byte};
        if (byte == '\\')
            code[1] = byte;
        else if (byte == '\r' || byte == '\n')
            std::snprintf(code, sizeof code, byte == '\r' ? "\\r" : "\\n");
        else if (byte < ' ' || byte > '~' || (byte == ' ' && isLast))
            std::snprintf(code, sizeof code, "\\x%02X", static_cast<BYTE>(byte));
        escaped += code;
    }
    return escaped;
}

} // namespace

// These stand in for the platform's, so that the program sees its boxes as the user does.
int MessageBoxA(HWND, LPCSTR lpText, LPCSTR lpCaption, UINT uType) {
    if (s_run != nullptr)
        s_run->RecordBox(lpText, lpCaption, uType);
    return IDOK;
}

BOOL MessageBeep(UINT) {
    return s_run->Record("beep");
}

BOOL sndPlaySoundA(LPCSTR lpszSound, UINT) {
    return s_run->Record("sound", lpszSound);
}

CScriptRun::CScriptRun(std::deque<std::string> inputs) : m_inputs(std::move(inputs)) {
    s_run = this;
    m_script.SetStatementBudget(kStatements);
}

CScriptRun::~CScriptRun() {
    s_run = nullptr;
}

std::string CScriptRun::Run(const std::string& path) {
    const DWORD result = m_script.Run(path.c_str(), this);
    if (result != 0)
        Record("result", std::to_string(result));
    return m_record;
}

bool CScriptRun::IsInput(std::string_view line) {
    return line.starts_with("answer ") || line.starts_with("device< ") || line == "gone";
}

// The input, if it is the next one and of this kind, goes into the record, too.
bool CScriptRun::TakeInput(std::string_view kind) {
    if (m_inputs.empty() || !m_inputs.front().starts_with(kind))
        return false;
    m_taken = m_inputs.front().substr(kind.size());
    m_record += m_inputs.front() + '\n';
    m_inputs.pop_front();
    return true;
}

BOOL CScriptRun::Record(std::string_view event, std::string_view bytes) {
    m_record.append(event).append(bytes.empty() ? "" : " ").append(Escape(bytes)).append("\n");
    return TRUE;
}

void CScriptRun::RecordBox(LPCSTR text, LPCSTR caption, UINT type) {
    if (caption == nullptr && type == (MB_ICONEXCLAMATION | MB_OK)) {
        ++m_nReports;
        Record("report", text);
        return;
    }
    const bool isPlain = caption != nullptr && type == (MB_ICONINFORMATION | MB_OK);
    m_record.append(isPlain ? "box \"" : "strange box \"")
        .append(caption != nullptr ? caption : "");
    m_record.append("\" \"").append(Escape(text)).append("\"\n");
}

BOOL CScriptRun::SendCommandGetResponse(LPCSTR command, DWORD& code, std::string& response) {
    if (std::exchange(m_nRetrySeen, m_nRetry) != m_nRetry)
        Record("retry", std::to_string(m_nRetry));
    Record("command>", command);
    if (!TakeInput("answer "))
        return FALSE;
    code = static_cast<DWORD>(std::stoul(m_taken));
    response = m_taken.substr(std::min(m_taken.find(' '), m_taken.size() - 1) + 1);
    return TRUE;
}

BOOL CScriptRun::Read(LPVOID buffer, DWORD, DWORD& count) {
    if (m_received.empty() && TakeInput("device< "))
        m_received = m_taken;
    count = m_received.empty() ? 0 : 1;
    m_received.copy(static_cast<char*>(buffer), count);
    m_received.erase(0, count);
    return count != 0;
}

BOOL CScriptRun::SetDataFormat(DWORD baudRate, DWORD parity, DWORD byteSize, DWORD stopBits) {
    std::string settings;
    for (const DWORD setting : {baudRate, parity, byteSize, stopBits})
        settings += ' ' + std::to_string(static_cast<std::int32_t>(setting));
    Record("format" + settings);
    return baudRate != 1;
}

BOOL CScriptRun::GetBaudRate(DWORD& baudRate) {
    baudRate = kBaudRate;
    return TRUE;
}
