// A session of the program on a serial device, with a test or the simulated modem at the far end.
#pragma once

#include "tests/endtoend/SessionTest.h"
#include "tests/vm/Cable.h"
#include "tests/vm/FarEnd.h"

#include <optional>

class CDriverSession : public CSessionTest, public testing::WithParamInterface<Cable> {
  protected:
    CDriverSession() { Connect(); }
    ~CDriverSession() override;

    // Takes hold of the far end, again once the device was unplugged.
    void Connect();
    // The simulated modem takes the far end over.
    void ConnectModem(const std::vector<std::string>& options = {});
    // Starts the interactive terminal and waits for it.
    void StartOnCable(const std::vector<std::string>& options = {});
    // Starts a command file with a capture, and a script of these statements.
    void StartCommandFile(const std::string& commands);
    void StartScript(const std::string& statements);

    Result FarEndGets(const std::string& bytes) { return m_farEnd->Gets(m_pump, bytes); }
    // The program ends in order, and before a driver's wait for its output is over.
    Result EndsSoon();
    // So it does at the user's key, and leaves the terminal in order.
    Result EndsByKey();

    const std::string m_capture = m_folder.GetPath("capture");
    std::optional<CFarEnd> m_farEnd;

  private:
    std::optional<CSimulator> m_modem;
    std::optional<CFarEnd> m_modemEnd;
};
