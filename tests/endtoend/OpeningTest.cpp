// The command line and devices that cannot be opened.
#include "tests/endtoend/SessionTest.h"

#include <fcntl.h>

class COpeningTest : public CSessionTest {
  protected:
    // Starts with standard error apart; the program waits for Enter and then ends with 0. Returns
    // what standard error got.
    std::string FailToOpen(const std::string& device, const std::string& title) {
        CCollector error;
        StartWith(-1, -1, error.GetWriter(), device);
        error.CloseWriter();
        m_pump.Add(error);
        EXPECT_TRUE(Fulfils("the message", [&] {
            const std::string text = Screen().GetText();
            return text.ends_with(title + "\"\nPress Enter to exit.");
        }));
        EXPECT_FALSE(m_program->HasEnded());
        Type("\r");
        EXPECT_TRUE(Ends());
        EXPECT_TRUE(m_pump.RunUntil([&] { return error.HasEnded(); }));
        m_pump.Remove(error);
        EXPECT_EQ(Screen().GetTitle(), "");
        return error.GetText();
    }

    // The path, the reason and one line's end.
    static void ExpectLine(const std::string& line, const std::vector<std::string>& parts) {
        for (const std::string& part : parts)
            EXPECT_NE(line.find(part), std::string::npos) << line << " lacks " << part;
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    }
};

TEST_F(COpeningTest, DevicesThatAreNone) {
    ExpectLine(FailToOpen("/dev/missing-device", "/dev/missing-device"),
               {"/dev/missing-device", "no such device"});
    ExpectLine(FailToOpen("/tmp", "/tmp"), {"/tmp"});
    const std::string file = m_folder.Write("file", "content");
    ExpectLine(FailToOpen(file, file), {file});
    EXPECT_EQ(ReadWholeFile(file), "content");
    ExpectLine(FailToOpen("My Modem", "My Modem"), {"My Modem"});
    ExpectLine(FailToOpen("/dev/null", "/dev/null"), {"/dev/null"});
    FailToOpen('/' + std::string(5000, 'n'), "nnn");
    ExpectLine(FailToOpen("/dev/\x1B]2;title\a", "/dev/?]2;title?"), {"/dev/?]2;title?"});
}

TEST_F(COpeningTest, DeviceInUse) {
    CTerminal otherTerminal;
    m_pump.Add(otherTerminal);
    ProcessOptions options;
    options.arguments = {WIRELET, m_device.GetPath()};
    options.environment = m_environment;
    options.input = options.output = options.error = otherTerminal.GetLine().GetSlave();
    options.terminal = otherTerminal.GetLine().GetPath();
    CProcess other(options);
    m_pump.Add(other);
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));

    const std::string& path = m_device.GetPath();
    ExpectLine(FailToOpen(path, path), {path, "wirelet", std::to_string(other.GetId())});
    // The first one is not disturbed.
    otherTerminal.Type("still mine");
    EXPECT_TRUE(DeviceGets("still mine"));
    otherTerminal.Type(kAltF4);
    EXPECT_TRUE(Fulfils("the end", [&] { return other.HasEnded(); }));
    EXPECT_EQ(other.GetExit(), 0);

    StartInteractive();
    Type(kAltF4);
    EXPECT_TRUE(Ends());
    m_pump.Remove(other);
    m_pump.Remove(otherTerminal);
}

TEST_F(COpeningTest, Usage) {
    for (const char* argument : {"-?", "/?"}) {
        CCollector output;
        m_pump.Add(output);
        StartWith(-1, output.GetWriter(), -1, argument);
        output.CloseWriter();
        EXPECT_TRUE(Ends(1));
        EXPECT_TRUE(m_pump.RunUntil([&] { return output.HasEnded(); }));
        EXPECT_TRUE(output.GetText().starts_with("Corvane v2.2\n")) << output.GetText();
        EXPECT_NE(output.GetText().find("Usage:"), std::string::npos);
        m_pump.Remove(output);
    }
}

TEST_F(COpeningTest, NoArgument) {
    ProcessOptions options;
    options.arguments = {WIRELET};
    options.environment = m_environment;
    CCollector output;
    CCollector error;
    options.output = output.GetWriter();
    options.error = error.GetWriter();
    CProcess program(options);
    output.CloseWriter();
    error.CloseWriter();
    for (IPollable* part : std::initializer_list<IPollable*>{&output, &error, &program})
        m_pump.Add(*part);
    EXPECT_TRUE(m_pump.RunUntil(
        [&] { return program.HasEnded() && output.HasEnded() && error.HasEnded(); }));
    EXPECT_EQ(program.GetExit(), 1);
    EXPECT_EQ(output.GetText(), "Corvane v2.2\n");
    EXPECT_NE(error.GetText().find("name a device"), std::string::npos);
}
