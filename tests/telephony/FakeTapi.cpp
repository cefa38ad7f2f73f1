#include "tests/telephony/FakeTapi.h"

#include "diagnostics/DebugModule.h"

#include <utility>

namespace {

constexpr std::string_view kWithReply =
    " lineAnswer lineDial lineDrop lineHold lineMakeCall lineUnhold phoneSetGain phoneSetVolume ";

// The handles of lines are 11 to 13, those of phones 21 and 22.
DWORD ValueOf(const ServiceCall& call) {
    if (call.Is("NegotiateAPIVersion"))
        return TAPI_API_VERSION;
    return (call.IsPhone() ? 21 : 11) + (call.Is("Open") ? 1 : 0) + (call.Is("MakeCall") ? 2 : 0);
}

} // namespace

LONG CFakeTapi::Answer(ServiceCall& call) {
    log += call.text + '\n';
    const std::string name(call.name);
    const bool hasReply = kWithReply.find(' ' + name + ' ') != std::string_view::npos;
    LONG result = hasReply ? static_cast<LONG>(dwNextRequest++) : 0;
    if (std::deque<LONG>& scripted = results[name]; !scripted.empty()) {
        result = scripted.front();
        scripted.pop_front();
    }
    if (result < 0)
        return result;
    if (call.outs[0])
        *call.outs[0] = ValueOf(call);
    if (call.outs[1])
        *call.outs[1] = call.Is("Initialize") ? dwDevices : 77;
    if (fill && !call.record.empty())
        result += fill(call.text, call.record.data());
    if (hasReply && result > 0)
        request(static_cast<DWORD>(result), call.IsPhone());
    return result;
}

void CFakeTapi::Post(bool isPhone, DWORD_PTR dwInstance, DWORD hDevice, DWORD dwMessage,
                     DWORD_PTR dwParam1, DWORD_PTR dwParam2) {
    m_messages.push_back([=, callback = open[isPhone].callback] {
        callback(hDevice, dwMessage, dwInstance, dwParam1, dwParam2, 0);
    });
}

void CFakeTapi::Deliver() {
    const std::function<void()> message = std::move(m_messages.front());
    m_messages.pop_front();
    message();
}

void CFakeTapi::Trace(DWORD level, const std::string& text) {
    static const std::string prefix = "CVTapi::", failed = " returning 0x80000048";
    std::string line = text.starts_with(prefix) ? text.substr(prefix.size()) : text;
    if (const std::size_t at = line.find(failed); at != std::string::npos)
        line.replace(at, failed.size(), "*");
    log += (level == DEBUG_LEVEL_ERROR ? "! " : "- ") + line + '\n';
}
