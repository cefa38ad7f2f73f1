// The program's sessions on real drivers: against the simulated modem, against itself, and against
// a device that takes nothing.
#include "tests/vm/DriverSession.h"
#include "tests/vm/Holder.h"

#include <regex>

class CModemTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CModemTest, testing::Values(ADAPTER, UART, ACM), NameOfCable);

TEST_P(CModemTest, InteractiveSession) {
    ConnectModem({"--dial-time", "10"});
    StartOnCable({"-B:115200"});
    ASSERT_TRUE(Shows("OK"));
    Type("AT+CSQ\r");
    ASSERT_TRUE(Shows("+CSQ: "));
    Type("ATD5551\r");
    ASSERT_TRUE(Shows("CONNECT"));
    Type("over the line and back");
    ASSERT_TRUE(Shows("over the line and back"));
    EXPECT_TRUE(EndsByKey());
}

TEST_P(CModemTest, ASecondProgramIsRefused) {
    StartOnCable();
    CCollector errors;
    ProcessOptions options;
    options.arguments = {WIRELET, GetParam().device};
    options.error = errors.GetWriter();
    CProcess second(options);
    errors.CloseWriter();
    m_pump.Add(errors);
    m_pump.Add(second);
    EXPECT_TRUE(Fulfils("the refusal", [&] { return second.HasEnded() && errors.HasEnded(); }));
    EXPECT_EQ(errors.GetText(), "wirelet: " + std::string(GetParam().device) +
                                    ": in use by process " + std::to_string(m_program->GetId()) +
                                    " (wirelet); end it, or choose another device\n");
    // The first one has not noticed.
    m_device.Send("still here");
    EXPECT_TRUE(Shows("still here"));
    m_pump.Remove(errors);
    m_pump.Remove(second);
}

class CChipSession : public CDriverSession {
  protected:
    std::string Ask(const char* what) { return AskHost(std::string(what) + ' ' + GetParam().name); }
};
INSTANTIATE_TEST_SUITE_P(Cables, CChipSession, testing::Values(ADAPTER, UART), NameOfCable);

TEST_P(CChipSession, ASpeedThatTheDriverReplacesIsTold) {
    const std::string before = Ask("settings").substr(0, 8);
    StartOnCable({"-B:4000000"});
    EXPECT_TRUE(Shows("Error setting 4000000 baud"));
    EXPECT_EQ(Ask("settings").substr(0, 8), before);
    Type(kF5);
    ASSERT_TRUE(Shows("Baud Rate: "));
    Type("1");
    EXPECT_TRUE(Shows("Setting 19200 baud"));
    EXPECT_EQ(Ask("settings"), "19200 8N1 - DTR RTS");
}

TEST_P(CChipSession, HangupDropsTheLinesForATenthOfASecond) {
    Ask("moves");
    StartScript("Hangup()");
    ASSERT_TRUE(EndsSoon());
    const std::string moves = Ask("moves");
    const std::regex pattern("-DTR \\d+ms -RTS (\\d+)ms \\+DTR \\d+ms \\+RTS ");
    std::smatch match;
    ASSERT_TRUE(std::regex_search(moves, match, pattern)) << moves;
    // Two clocks: the program's and the emulator's.
    EXPECT_GE(std::stoi(match[1]), 95);
}

class CMegabyteTest : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CMegabyteTest, testing::Values(ADAPTER, ACM), NameOfCable);

TEST_P(CMegabyteTest, ArrivesWholeEachWayAtOnce) {
    constexpr int LINES = 45000;
    const std::string text = MakeLines(LINES, " of a long text\r\n");
    ASSERT_GT(text.size(), 1u << 20);
    const CDescriptor input(open(m_folder.Write("input", text).c_str(), O_RDONLY | O_CLOEXEC));
    const std::string path = m_folder.GetPath("output");
    const CDescriptor output(open(path.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600));
    StartWith(input.Get(), output.Get(), -1, {GetParam().device});
    std::string& received = m_device.GetReceived();
    // What comes before the port has left the kernel's line mode, the kernel echoes.
    ASSERT_TRUE(Fulfils("the start", [&] { return !received.empty(); }));
    m_device.Send(text);
    ASSERT_TRUE(m_pump.RunUntil([this] { return m_program->HasEnded(); }, GUARD * 50));
    EXPECT_TRUE(received == "ATE1V1\r" + text) << received.size();
    const std::string shown = ReadWholeFile(path);
    EXPECT_TRUE(shown.ends_with(MakeLines(LINES, " of a long text\n"))) << shown.size();
}

class CStuckSession : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CStuckSession, testing::Values(ACM), NameOfCable);

// Whose driver cannot discard what it was given.
TEST_P(CStuckSession, TheEndDoesNotWait) {
    StartOnCable();
    m_pump.Remove(m_device);
    Type(std::string(200000, 't'));
    EXPECT_TRUE(Fulfils("the keys", [this] { return m_terminal.IsAllSent(); }));
    m_pump.RunFor(std::chrono::milliseconds(300));
    EXPECT_TRUE(EndsByKey());
    m_pump.Add(m_device);
}

class CFlowSession : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CFlowSession, testing::Values(UART), NameOfCable);

TEST_P(CFlowSession, TheScreenGoesOn) {
    CHolder holder(GetParam().device);
    StartOnCable();
    const auto choose = [this](const char* key, const char* answer) {
        Type(kF6);
        EXPECT_TRUE(Shows("Flow Control: "));
        Type(key);
        EXPECT_TRUE(Shows(answer));
    };
    const std::string typed(20000, 't');
    const auto blockAndHear = [&](const std::string& cleared, const std::string& text) {
        holder.LowerCts([&] { choose("2", "Set to Hardware"); });
        Type(typed);
        m_device.Send(cleared + text);
        EXPECT_TRUE(Shows(text));
    };
    blockAndHear("", "the device goes on");
    EXPECT_EQ(m_device.GetReceived(), "");
    choose("1", "Set to None");
    EXPECT_TRUE(DeviceGets(typed));
    blockAndHear("\x1B[2J", "and on");
    EXPECT_TRUE(EndsByKey());
}

class CSelectionSession : public CDriverSession {};
INSTANTIATE_TEST_SUITE_P(Cables, CSelectionSession, testing::Values(ADAPTER), NameOfCable);

// The guest has no udev: what a modem is called, it says itself.
TEST_P(CSelectionSession, ToTheModemOrToOneThatIsGone) {
    ConnectModem();
    const auto tells = [this](const char* what) {
        const std::regex pattern(what);
        return Fulfils(what, [&] { return std::regex_search(m_terminal.GetOutput(), pattern); });
    };
    const auto list = [&] {
        m_terminal.GetReceived().clear();
        StartWith(-1, -1, -1, {});
        return tells("Ports:\r\n 1\\) QEMU USB SERIAL\r\n 2\\) Linux .*Gadget Serial.*\r\n"
                     " 3\\) COM2\r\n 4\\) /dev/ttyACM0\r\n 5\\) /dev/ttyUSB0\r\nEnter .*: $");
    };
    ASSERT_TRUE(list());
    Type("1\r");
    ASSERT_TRUE(Shows("OK"));
    Type("AT+CGMI\r");
    EXPECT_TRUE(Shows("Wirelet"));
    EXPECT_TRUE(EndsByKey());

    for (const auto& [number, message] :
         {std::pair("1\r", "\"QEMU USB SERIAL\", /dev/ttyUSB0: no such device"),
          std::pair("5\r", "/dev/ttyUSB0: no such device")}) {
        ASSERT_TRUE(list());
        Unplug(GetParam());
        EXPECT_TRUE(Fulfils("the end of it", [] { return access(ADAPTER.device, F_OK) != 0; }));
        Type(number);
        EXPECT_TRUE(tells(message));
        Type("\r");
        EXPECT_TRUE(EndsSoon());
        Plug(GetParam());
    }
}
