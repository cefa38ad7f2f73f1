// The module: each function of the list, with its arguments written down as they came.
#include "tests/telephony/FakeTapi.h"

#include "services/telephony/MessageWindow.h"
#include "tests/telephony/ServiceFunctions.h"

#include <optional>

namespace {

// Of the thread that brings the first service up.
std::optional<telephonyservice::CMessageWindow> s_window;
int s_services = 0;
LINECALLBACK s_callbacks[2] = {}; // lines, phones

void Deliver(DWORD) {
    const SFakeMessage message = FakeTapi()->messages.front();
    FakeTapi()->messages.pop_front();
    if (s_callbacks[message.isPhone])
        s_callbacks[message.isPhone](message.hDevice, message.dwMessage, message.dwInstance,
                                     message.dwParam1, message.dwParam2, 0);
}

void Post(const SFakeMessage& message) {
    FakeTapi()->messages.push_back(message);
    s_window->Post(0);
}

void OpenWindow() {
    if (s_services++ == 0)
        s_window.emplace(Deliver);
    FakeTapi()->post = Post;
}

void CloseWindow() {
    if (--s_services != 0)
        return;
    s_window.reset();
    FakeTapi()->messages.clear();
    FakeTapi()->post = nullptr;
}

struct SLoad {
    SLoad() { ++FakeTapi()->loads; }
    ~SLoad() { --FakeTapi()->loads; }
} s_load;

const std::map<std::string, DWORD> HANDLES = {{"lineInitialize", SFakeTapi::LINE_APP},
                                              {"lineOpen", SFakeTapi::LINE},
                                              {"lineMakeCall", SFakeTapi::CALL},
                                              {"phoneInitialize", SFakeTapi::PHONE_APP},
                                              {"phoneOpen", SFakeTapi::PHONE},
                                              {"lineNegotiateAPIVersion", TAPI_API_VERSION},
                                              {"phoneNegotiateAPIVersion", TAPI_API_VERSION}};

bool HasReply(const std::string& name) {
    static const std::string NAMES = " lineAnswer lineBlindTransfer lineDial lineDrop lineHold "
                                     "lineMakeCall lineSetCallParams lineUnhold phoneSetGain "
                                     "phoneSetHookSwitch phoneSetVolume ";
    return NAMES.find(' ' + name + ' ') != std::string::npos;
}

// One call: what it returns, and its arguments as text.
class CCall {
  public:
    explicit CCall(const std::string& name) : m_name(name), m_text(name) {
        std::deque<LONG>& results = FakeTapi()->results[name];
        if (!results.empty()) {
            m_result = results.front();
            results.pop_front();
        } else if (HasReply(name)) {
            m_result = static_cast<LONG>(FakeTapi()->dwNextRequest++);
        }
    }

    void Take(DWORD value) { m_text += ' ' + std::to_string(value); }
    void Take(LPCSTR text) { m_text += text ? std::string(" '") + text + '\'' : " null"; }
    void Take(char*) { m_text += " *"; }
    void Take(LPCVOID pointer) { m_text += pointer ? " *" : " null"; }
    void Take(DWORD_PTR instance) {
        (IsPhone() ? FakeTapi()->dwPhoneInstance : FakeTapi()->dwLineInstance) = instance;
    }
    void Take(LINECALLBACK callback) { s_callbacks[IsPhone()] = callback; }
    void Take(LPDWORD out) {
        const auto handle = HANDLES.find(m_name);
        if (m_result < 0 || !out)
            return;
        *out = handle != HANDLES.end() ? handle->second : 77;
        if (m_hasOut && m_name.ends_with("Initialize"))
            *out = FakeTapi()->dwDevices;
        m_hasOut = true;
    }
    template <class Record>
    requires requires(Record* record) { record->dwTotalSize = 0; }
    void Take(Record* record) {
        m_record = record;
        m_text += record ? " [" + std::to_string(record->dwTotalSize) + ']' : " null";
    }

    LONG Finish() {
        FakeTapi()->calls.push_back(m_text);
        if (m_name.ends_with("Initialize") && m_result >= 0)
            OpenWindow();
        if (m_name.ends_with("Shutdown"))
            CloseWindow();
        if (m_record && m_result >= 0 && FakeTapi()->fill)
            m_result += FakeTapi()->fill(m_text, m_record);
        if (HasReply(m_name) && m_result > 0)
            Request(static_cast<DWORD>(m_result));
        return m_result;
    }

  private:
    bool IsPhone() const { return m_name.starts_with("phone"); }
    void Request(DWORD request) const {
        if (!FakeTapi()->post)
            return; // nobody listens yet
        if (FakeTapi()->request)
            FakeTapi()->request(request, IsPhone());
        else
            FakeTapi()->Reply(request, 0, IsPhone());
    }

    std::string m_name;
    std::string m_text;
    LONG m_result = 0;
    LPVOID m_record = nullptr;
    bool m_hasOut = false;
};

} // namespace

// The list has no argument to hand on, but the loader asks where a function really is.
#define FAKE_EXPORT(result, name, parameters)                                                      \
    extern "C" {                                                                                   \
    __attribute__((used)) static auto Resolve_##name() -> result(*) parameters {                   \
        return &SServiceFunction<CCall, Service_##name, result parameters>::Run;                   \
    }                                                                                              \
    __attribute__((visibility("default"), ifunc("Resolve_" #name))) result name parameters;        \
    }
WIRELET_TAPI_FUNCTIONS(FAKE_EXPORT)
