// The telephony module, used as the program uses it, through the wrapper, on a machine that has no
// modems but those that a test names.
#pragma once

#include "common/InterfacePtr.h"
#include "telephony/ITapi.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <vector>

// A client of the service. The last one that goes shuts the service down and unloads the module.
class CClient {
  public:
    CClient();
    CClient(const CClient&) = delete;
    ITapi* operator->() const { return m_tapi.Get(); }

    // Places a call, on a line that it opens if none is open. The result, or the request.
    LONG Call(const std::string& name, BOOL bWait = TRUE);
    // The handle of the call's port; null when there is none.
    HANDLE GetPort() const;
    // The names of all lines, with a '*' before those that are data modems.
    std::vector<std::string> ListLines() const;

    // What the service has told: "reply", and the numbers of a call's states.
    std::string told;

  private:
    CInterfacePtr<ITapi> m_tapi;
};

class CTapiTest : public ::testing::Test {
  protected:
    void SetUp() override;
    // Both begin with a new client.
    void Restart() { m_client.emplace(); }
    void NameModems(const std::string& content) {
        m_folder.Write("wirelet/modems.conf", content);
        Restart();
    }
    // What another client's call gets.
    static LONG Try(const std::string& name) { return CClient().Call(name); }

    // Dispatches messages until the condition holds; false when it does not in time.
    static bool RunUntil(const std::function<bool()>& condition);
    // Dispatches what is there.
    static void Dispatch();

    CTempFolder m_folder;
    std::optional<CClient> m_client;
};
