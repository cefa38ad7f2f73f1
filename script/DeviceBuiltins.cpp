#include "script/DeviceBuiltins.h"

#include "modem/Modem.h"
#include "platform/Clock.h"
#include "script/BuiltinSupport.h"
#include "script/FilePieces.h"
#include "script/TextWatch.h"

#include <utility>

namespace builtins {
namespace {

// What modems take for the end of a call and not for noise on the line.
constexpr DWORD kHangupTime = 100;

// A device that never pauses must not keep the console's events waiting: after so many bytes they
// get their turn.
constexpr DWORD kBytesBetweenLooks = 256;

// So long may a device take nothing of what the script has sent before a command follows all the
// same.
constexpr DWORD kNoProgress = 2000;

ScriptWord Finish(CVScript& script, std::int32_t result) {
    script.EndIfOver();
    return ScriptWord::Integer(result);
}

// The code of the exchange. False when there was none to be had, after a report.
bool Exchange(CVScript& script, const ScriptWord& argument, EResponse kept, DWORD& code) {
    std::string command;
    if (!TakeText(script, argument, command))
        return false;
    code = RESULT_NO_RESPONSE;
    std::string& response = script.Results()[kept];
    response.clear();
    // The exchange flushes: what SendString and SendFile have sent must have left by then.
    if (std::exchange(script.m_bHasSent, false))
        script.Host().Drain(kNoProgress);
    script.Host().SendCommandGetResponse(command.c_str(), code, response);
    script.EndIfOver();
    return true;
}

bool SendFileLines(CVScript& script, const std::string& path) {
    CFilePieces file;
    if (!file.Open(path))
        return false;
    std::string piece;
    while (!script.HasError() && file.Next(piece)) {
        script.m_bHasSent = true;
        script.Host().SendString(piece.c_str());
        script.EndIfOver();
    }
    return !file.HasFailed();
}

// Takes one byte at a time: what comes behind the text is for whoever reads next.
bool WaitForText(CVScript& script, const std::string& text, DWORD milliseconds) {
    CVModem& host = script.Host();
    const platform::CDeadline deadline(milliseconds);
    CTextWatch watch(text);
    DWORD received = 0;
    while (deadline.Remaining() != 0 && !script.HasError()) {
        char byte = 0;
        DWORD count = 0;
        if (!host.Read(&byte, 1, count)) {
            if (!host.WaitForBytes(deadline))
                return false;
            continue;
        }
        if (byte != '\0' && watch.Take(byte))
            return deadline.Remaining() != 0;
        if (++received % kBytesBetweenLooks == 0)
            script.EndIfOver();
    }
    return false;
}

} // namespace

ScriptWord GetBaudRate(CVScript& script, const BuiltinArguments&) {
    DWORD rate = 0;
    const BOOL isKnown = script.Host().GetBaudRate(rate);
    return Finish(script, isKnown ? static_cast<std::int32_t>(rate) : 0);
}

ScriptWord Hangup(CVScript& script, const BuiltinArguments&) {
    script.Host().SetDtrRts(FALSE);
    Sleep(kHangupTime);
    script.Host().SetDtrRts(TRUE);
    return Finish(script, 0);
}

ScriptWord SendCommand(CVScript& script, const BuiltinArguments& arguments) {
    DWORD code = 0;
    if (!Exchange(script, arguments[0], EResponse::SendCommand, code))
        return {};
    return ScriptWord::Integer(static_cast<std::int32_t>(code));
}

ScriptWord SendCommandGetString(CVScript& script, const BuiltinArguments& arguments) {
    DWORD code = 0;
    Exchange(script, arguments[0], EResponse::SendCommandGetString, code);
    return ScriptWord::Text(CScriptMemory::ResponseLocation(EResponse::SendCommandGetString));
}

ScriptWord SendFile(CVScript& script, const BuiltinArguments& arguments) {
    std::string path;
    if (!TakeText(script, arguments[0], path))
        return {};
    const bool isSent = SendFileLines(script, path);
    return Finish(script, isSent ? 1 : 0);
}

ScriptWord SendString(CVScript& script, const BuiltinArguments& arguments) {
    std::string text;
    if (!TakeText(script, arguments[0], text))
        return {};
    script.m_bHasSent = true;
    script.Host().SendString(text.c_str());
    return Finish(script, 0);
}

ScriptWord SetBaudRate(CVScript& script, const BuiltinArguments& arguments) {
    const auto rate = static_cast<DWORD>(arguments[0].value);
    const BOOL isSet = script.Host().SetDataFormat(rate, KEEP_SETTING, KEEP_SETTING, KEEP_SETTING);
    return Finish(script, isSet);
}

ScriptWord SetRetry(CVScript& script, const BuiltinArguments& arguments) {
    script.Host().SetRetry(arguments[0].value);
    return Finish(script, 1);
}

ScriptWord SetTimeout(CVScript& script, const BuiltinArguments& arguments) {
    script.Host().SetTimeout(MillisecondsOf(arguments[0]));
    return Finish(script, 1);
}

ScriptWord WaitForString(CVScript& script, const BuiltinArguments& arguments) {
    std::string text;
    if (!TakeText(script, arguments[0], text))
        return {};
    const bool hasCome = WaitForText(script, text, MillisecondsOf(arguments[1]));
    return Finish(script, hasCome ? 1 : 0);
}

} // namespace builtins
