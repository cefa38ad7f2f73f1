// CFakeTapi: the service of the tests: it succeeds, unless a test says otherwise, and keeps a
// record of what it was asked and of what was traced.
#pragma once

#include "tests/telephony/ScriptedService.h"

#include <deque>
#include <functional>
#include <map>

class CFakeTapi final : public CScriptedService {
  public:
    // A line each: "lineHold 13", "! LineHold() - text" for an error that CVTapi traces, "- " for
    // what else is traced; " returning" and the status LINEERR_OPERATIONFAILED is "*".
    std::string log;
    std::map<std::string, std::deque<LONG>> results; // of a function's next calls
    std::string missing;                             // a function, or "library"
    DWORD dwDevices = 0;                             // of each kind
    std::function<LONG(const std::string& call, LPVOID record)> fill;
    std::function<void(DWORD dwRequest, bool isPhone)> request =
        [this](DWORD dwRequest, bool isPhone) { Reply(dwRequest, 0, isPhone); };
    DWORD dwNextRequest = 1000;

    // Messages, which come when somebody dispatches; to the newest line or phone, or to another.
    void Reply(DWORD dwRequest, LONG lResult, bool isPhone = false) {
        Post(isPhone, open[isPhone].instance, 0, isPhone ? PHONE_REPLY : LINE_REPLY, dwRequest,
             static_cast<DWORD>(lResult));
    }
    void CallState(HCALL hCall, DWORD dwState, DWORD_PTR dwInstance = 0) {
        Post(false, dwInstance ? dwInstance : open[0].instance, hCall, LINE_CALLSTATE, dwState, 0);
    }

    bool CanLoad(LPCSTR function) override { return missing != (function ? function : "library"); }
    LONG Answer(ServiceCall& call) override;
    bool HasMessage() override { return !m_messages.empty(); }
    void Deliver() override;
    void Trace(DWORD level, const std::string& text) override;

  private:
    void Post(bool isPhone, DWORD_PTR dwInstance, DWORD hDevice, DWORD dwMessage,
              DWORD_PTR dwParam1, DWORD_PTR dwParam2);

    std::deque<std::function<void()>> m_messages;
};
