// The log of a session (-O): decoded, it is what the device itself has sent and got.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <sys/stat.h>

class CTraceLogTest : public CSessionTest {
  protected:
    void StartLogged(const std::string& file) {
        StartInteractive({"-O:" + file});
        m_record = ">ATE1V1\r";
    }
    // The device sends this and a mark behind it, which shows when all of it has come.
    void Sends(const std::string& bytes) {
        const std::string mark = "\r\nmark" + std::to_string(++m_nMark);
        m_device.Send(bytes + mark);
        ASSERT_TRUE(Shows(mark.substr(2)));
        m_record += '<' + bytes + mark;
    }
    void TypesAndGets(const std::string& bytes) {
        Type(bytes);
        ASSERT_TRUE(DeviceGets(bytes));
        m_record += '>' + bytes;
    }
    Result LogHoldsRecord() { return IsSame(Decode(ReadWholeFile(m_capture)), m_record); }

    std::string m_record;

  private:
    int m_nMark = 0;
};

TEST_F(CTraceLogTest, HoldsTheWholeSession) {
    m_folder.Write("capture", std::string(100000, 'o'));
    std::string everyByte;
    for (int value = 0; value < 256; ++value)
        everyByte += static_cast<char>(value == 0x1B ? 0 : value);
    for (const int signal : {0, SIGTERM, SIGHUP}) {
        StartLogged(m_capture);
        Sends("ATE1V1\r\r\nOK %s%n\r\n");
        TypesAndGets("AT+CGMI\r");
        Sends(everyByte + MakeLines(900));
        TypesAndGets("100%s\x1B[A\x01" + MakeLines(5000, "\r"));
        Sends("[ ] [41 42 ]");
        if (signal == 0)
            Type(kAltF4);
        else
            m_program->Kill(signal);
        ASSERT_TRUE(Ends());
        EXPECT_TRUE(LogHoldsRecord());
    }
}

TEST_F(CTraceLogTest, HoldsAScriptsSession) {
    StartScript("STRING a$\r\n  a$ = SendCommandGetString(\"ATI\\r\")\r\n"
                "  WaitForString(\"last words\", 30000)\r\n  SendFile(\"" +
                    m_folder.Write("lines", MakeLines(2000)) + "\")",
                {"-O:" + m_capture});
    ASSERT_TRUE(DeviceGets("ATI\r"));
    const std::string answer = "ATI\r\r\nModem\r\n\r\nOK\r\n" + MakeLines(2000) + "last words";
    m_device.Send(answer);
    // What the slow device has not got when the script ends reaches it all the same.
    m_device.SetReadLimit(20);
    ASSERT_TRUE(Ends());
    EXPECT_TRUE(DeviceGets(MakeLines(2000)));
    m_record = ">ATI\r<" + answer + '>' + MakeLines(2000);
    EXPECT_TRUE(LogHoldsRecord());
}

TEST_F(CTraceLogTest, IsInTheFileWithoutAnEnd) {
    StartLogged(m_capture);
    Sends("received");
    TypesAndGets("typed");
    // Nothing more is sent, and still all that comes gets there, more than is kept for a send.
    Sends(MakeLines(2000));
    ASSERT_TRUE(Fulfils("the log", [this] { return bool(LogHoldsRecord()); }));
    m_program->Kill(SIGKILL);
    ASSERT_TRUE(EndsWith(-SIGKILL));
    EXPECT_TRUE(LogHoldsRecord());
}

TEST_F(CTraceLogTest, TellsAFullDiskOnceAndGoesOn) {
    const std::string message = "Cannot write /dev/full: the disk is full";
    StartLogged("/dev/full");
    // More than is gathered while the file takes nothing.
    TypesAndGets(std::string(300000, 'p'));
    ASSERT_TRUE(Shows(message));
    Sends("still shown");
    Type(kAltF4);
    ASSERT_TRUE(Ends());
    const std::string& output = m_terminal.GetOutput();
    EXPECT_EQ(output.find(message), output.rfind(message));
}

TEST_F(CTraceLogTest, AFileThatTakesNothingHoldsOnlyTheEndUp) {
    ASSERT_EQ(mkfifo(m_capture.c_str(), 0600), 0);
    for (const bool isRead : {true, false}) {
        StartLogged(m_capture);
        const std::string paste(500000, 'p');
        Type(paste);
        ASSERT_TRUE(DeviceGets(paste));
        m_record += paste;
        Type(kAltF4);
        ASSERT_TRUE(Shows("waiting for " + m_capture));
        ASSERT_TRUE(GivesTerminalBack());
        if (!isRead) {
            Type("\x03");
            EXPECT_TRUE(Ends());
            EXPECT_GE(Screen().FindRow("Cannot write " + m_capture), 0);
            break;
        }
        // Until the program has closed its end.
        EXPECT_TRUE(LogHoldsRecord());
        EXPECT_TRUE(Ends());
    }
}
