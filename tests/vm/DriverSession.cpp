#include "tests/vm/DriverSession.h"

void CDriverSession::ConnectModem(const std::vector<std::string>& options) {
    m_modem.emplace(m_pump, options);
    m_modemEnd.emplace(m_modem->GetPath());
    m_modemEnd->JoinTo(m_device);
    m_pump.Add(*m_modemEnd);
}

void CDriverSession::StartOnCable(const std::vector<std::string>& options) {
    Start(GetParam().device, options);
    ASSERT_TRUE(Shows("etting "));
    if (m_modem)
        return;
    // After a replugging, the gadget may still have something of before.
    std::string& received = m_device.GetReceived();
    ASSERT_TRUE(Fulfils("the initialisation", [&] { return received.ends_with("ATE1V1\r"); }));
    received.clear();
}

void CDriverSession::StartCommandFile(const std::string& commands) {
    Start(GetParam().device, {"-A:" + m_folder.Write("commands", commands), "-O:" + m_capture});
}

void CDriverSession::StartScript(const std::string& statements) {
    const std::string script = "FUNCTION main()\r\n" + statements + "\r\nENDFUNCTION\r\n";
    Start(GetParam().device, {"-S:" + m_folder.Write("script", script)});
}

CSessionTest::Result CDriverSession::EndsSoon() {
    if (m_pump.RunUntil([this] { return m_program->HasEnded(); }, GUARD))
        return EndsWith(0);
    return testing::AssertionFailure() << "still runs; the screen shows\n" << Screen().GetText();
}

CSessionTest::Result CDriverSession::EndsByKey() {
    Type(kAltF4);
    const Result ended = EndsSoon();
    return ended ? Ends() : ended;
}
