// A session of the program on a serial device, with a test or the simulated modem at the far end.
#pragma once

#include "tests/endtoend/SessionTest.h"
#include "tests/vm/Cable.h"
#include "tests/vm/FarEnd.h"

#include <optional>

class CDriverSession : public CSessionTest, public testing::WithParamInterface<Cable> {
  protected:
    CDriverSession() { Connect(); }

    // Takes hold of the far end, again once the device was unplugged.
    void Connect() { m_device = OpenFarEnd(GetParam().farEnd); }
    // The simulated modem takes the far end over.
    void ConnectModem(const std::vector<std::string>& options = {});
    // Starts the interactive terminal and waits for it.
    void StartOnCable(const std::vector<std::string>& options = {});
    // Starts a command file with a capture, and a script of these statements.
    void StartCommandFile(const std::string& commands);
    void StartScript(const std::string& statements);

    // The program ends in order, and before a driver's wait for its output is over.
    Result EndsSoon();
    // So it does at the user's key, and leaves the terminal in order.
    Result EndsByKey();

    const std::string m_capture = m_folder.GetPath("capture");

  private:
    std::optional<CDevice> m_modemEnd;
    std::optional<CSimulator> m_modem;
};
