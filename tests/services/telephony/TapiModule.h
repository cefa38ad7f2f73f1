// The telephony module, loaded as the program loads it, and the events that it tells a test of.
//
// One at a time: the events go to the one that lives. The module is loaded, and the line service
// initialised, from the first to the last day of the object.
#pragma once

#include "platform/Module.h"
#include "platform/Wait.h"
#include "telephony/TapiFunctions.h"

#include <functional>
#include <string>
#include <vector>

struct TapiEvent {
    DWORD hDevice;
    DWORD message;
    DWORD_PTR instance;
    DWORD_PTR parameter1;
    DWORD_PTR parameter2;
};

class CTapiModule {
  public:
    CTapiModule();
    CTapiModule(const CTapiModule&) = delete;
    CTapiModule& operator=(const CTapiModule&) = delete;
    ~CTapiModule();

#define WIRELET_DECLARE_MEMBER(result, name, parameters) result(*name) parameters = nullptr;
    WIRELET_TAPI_FUNCTIONS(WIRELET_DECLARE_MEMBER)
#undef WIRELET_DECLARE_MEMBER

    HLINEAPP GetApplication() const {
        return m_hLineApp;
    }
    // Shuts the line service down, if there is one, and initialises it.
    void Restart();
    void Shutdown();
    void Unload();

    // The names of all lines, with a '*' before those that are data modems.
    std::vector<std::string> ListLines() const;
    // 0 when there is none of that name.
    HLINE OpenLine(const std::string& name, DWORD_PTR instance = 0) const;
    // The result of the request.
    LONG StartCall(HLINE hLine, HCALL* hCall) const;
    // What the service replies; or the failure of the request.
    LONG MakeCall(HLINE hLine, HCALL* hCall);
    LONG AwaitReply(LONG request);
    // The handle of a call's port; null when there is none.
    HANDLE GetPort(HCALL hCall) const;

    // Dispatches messages until the condition holds; false when it does not in time.
    bool RunUntil(const std::function<bool()>& condition) const;
    // Dispatches what is there.
    static void Dispatch();

    const std::vector<TapiEvent>& GetEvents() const {
        return m_events;
    }
    bool HasEvent(DWORD hDevice, DWORD message, DWORD_PTR parameter1) const;

  private:
    static void OnEvent(DWORD hDevice, DWORD message, DWORD_PTR instance, DWORD_PTR parameter1,
                        DWORD_PTR parameter2, DWORD_PTR parameter3);

    HMODULE m_hModule;
    HLINEAPP m_hLineApp = 0;
    DWORD m_dwDevices = 0;
    std::vector<TapiEvent> m_events;
};
