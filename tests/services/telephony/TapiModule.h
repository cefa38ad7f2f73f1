// The telephony module, loaded as the program loads it, and the events that it tells a test of.
//
// One at a time: the events go to the one that lives. The module is loaded, and the line service
// initialised, from the first to the last day of the object.
#pragma once

#include "platform/Wait.h"
#include "telephony/TapiLibrary.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

struct TapiEvent {
    DWORD hDevice;
    DWORD message;
    DWORD_PTR instance;
    DWORD_PTR parameter1;
    DWORD_PTR parameter2;
};

class CTapiModule : public CVTapiLibrary {
  public:
    CTapiModule();
    ~CTapiModule();

    HLINEAPP m_hLineApp = 0;
    std::vector<TapiEvent> m_events;

    // Shuts the line service down, if there is one, and initialises it.
    void Restart();
    void Shutdown();
    void Unload() {
        m_hLineApp = 0;
        CVTapiLibrary::Unload();
    }

    // The names of all lines, with a '*' before those that are data modems.
    std::vector<std::string> ListLines();
    // 0 when there is none of that name.
    HLINE OpenLine(const std::string& name, DWORD_PTR instance = 0);
    // The result of the request.
    LONG StartCall(HLINE hLine, HCALL* hCall);
    // What the service replies to a request; or the failure of the request.
    LONG AwaitReply(LONG request) const;
    LONG MakeCall(HLINE hLine, HCALL* hCall);
    // The reply to a drop.
    LONG Drop(HCALL hCall) { return AwaitReply(lineDrop(hCall, nullptr, 0u)); }
    // The handle of a call's port; null when there is none.
    HANDLE GetPort(HCALL hCall);

    // Dispatches messages until the condition holds; false when it does not in time.
    bool RunUntil(const std::function<bool()>& condition) const;
    // Dispatches what is there.
    static void Dispatch();
    // The event, null when there was none.
    const TapiEvent* FindEvent(DWORD hDevice, DWORD message, DWORD_PTR parameter1) const;

  private:
    static void OnEvent(DWORD hDevice, DWORD message, DWORD_PTR instance, DWORD_PTR parameter1,
                        DWORD_PTR parameter2, DWORD_PTR parameter3);
    DWORD m_dwDevices = 0;
};

// A machine that has the module and no modems but those that the test names.
class CTapiTest : public ::testing::Test {
  protected:
    void SetUp() override;
    void NameModems(const std::string& content);

    CTempFolder m_folder;
    std::optional<CTapiModule> m_module;
};
