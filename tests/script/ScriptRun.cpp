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
        const auto byte = static_cast<unsigned char>(bytes[index]);
        const bool isLast = index + 1 == bytes.size();
        char code[8] = {bytes[index]};
        if (byte == '\r' || byte == '\n' || byte == '\\')
            std::snprintf(code, sizeof code, "\\%c",
                          byte == '\r'   ? 'r'
                          : byte == '\n' ? 'n'
                                         : '\\');
        else if (byte < ' ' || byte > '~' || (byte == ' ' && isLast))
            std::snprintf(code, sizeof code, "\\x%02X", byte);
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
    s_run->Record("beep");
    return TRUE;
}

BOOL sndPlaySoundA(LPCSTR lpszSound, UINT) {
    s_run->Record("sound", lpszSound);
    return TRUE;
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
bool CScriptRun::TakeInput(std::string_view kind, std::string& rest) {
    if (m_inputs.empty() || !m_inputs.front().starts_with(kind))
        return false;
    rest = m_inputs.front().substr(kind.size());
    m_record += m_inputs.front() + '\n';
    m_inputs.pop_front();
    return true;
}

void CScriptRun::Record(std::string_view event, std::string_view bytes) {
    m_record.append(event).append(bytes.empty() ? "" : " ").append(Escape(bytes)).append("\n");
}

void CScriptRun::RecordBox(LPCSTR text, LPCSTR caption, UINT type) {
    if (caption == nullptr && type == (MB_ICONEXCLAMATION | MB_OK)) {
        ++m_nReports;
        return Record("report", text);
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
    std::string answer;
    if (!TakeInput("answer ", answer))
        return FALSE;
    code = static_cast<DWORD>(std::stoul(answer));
    response = answer.substr(std::min(answer.find(' '), answer.size() - 1) + 1);
    return TRUE;
}

BOOL CScriptRun::Read(LPVOID buffer, DWORD, DWORD& count) {
    count = 0;
    if (m_received.empty())
        TakeInput("device< ", m_received);
    if (m_received.empty())
        return FALSE;
    *static_cast<char*>(buffer) = m_received.front();
    m_received.erase(0, 1);
    count = 1;
    return TRUE;
}

BOOL CScriptRun::WaitForBytes(const platform::CDeadline&) {
    return FALSE;
}

BOOL CScriptRun::SendString(LPCSTR text) {
    Record("device>", text);
    return TRUE;
}

void CScriptRun::SetDtrRts(BOOL on) {
    Record("dtr", on ? "1" : "0");
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

void CScriptRun::SetTimeout(DWORD milliseconds) {
    Record("timeout", std::to_string(milliseconds));
}

BOOL CScriptRun::IsDeviceGone() {
    std::string rest;
    return TakeInput("gone", rest);
}
