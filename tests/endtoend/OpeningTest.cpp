// The command line and devices that cannot be opened.
#include "tests/endtoend/SessionTest.h"

#include <fcntl.h>

class COpeningTest : public CSessionTest {
  protected:
    // The program tells why in one line of standard error, waits for Enter and then ends with 0.
    void ExpectFailure(const std::string& device, const std::string& shown) {
        CCollector error;
        StartWith(-1, -1, error.GetWriter(), {device});
        error.CloseWriter();
        m_pump.Add(error);
        EXPECT_TRUE(Fulfils("the message", [&] {
            return Screen().GetText().ends_with(shown + "\"\nPress Enter to exit.");
        }));
        EXPECT_FALSE(m_program->HasEnded());
        Type("\r");
        EXPECT_TRUE(Ends());
        EXPECT_TRUE(m_pump.RunUntil([&] { return error.HasEnded(); }));
        m_pump.Remove(error);
        EXPECT_EQ(Screen().GetTitle(), "");
        const std::string& line = error.GetText();
        EXPECT_NE(line.find(shown), std::string::npos) << line;
        EXPECT_EQ(line.find('\n'), line.size() - 1) << line;
    }
};

TEST_F(COpeningTest, DevicesThatAreNone) {
    const std::string file = m_folder.Write("file", "content");
    const std::vector<std::string> devices = {"/dev/missing-device", "/dev/null", "/tmp", file};
    for (const std::string& device : devices)
        ExpectFailure(device, device);
    EXPECT_EQ(ReadWholeFile(file), "content");
    ExpectFailure('/' + std::string(5000, 'n'), "nnn");
    ExpectFailure("/dev/\x1B]2;title\a", "/dev/?]2;title?");
}

TEST_F(COpeningTest, Usage) {
    CCollector output;
    m_pump.Add(output);
    StartWith(-1, output.GetWriter(), -1, {"-?"});
    output.CloseWriter();
    EXPECT_TRUE(EndsWith(1));
    EXPECT_TRUE(m_pump.RunUntil([&] { return output.HasEnded(); }));
    m_pump.Remove(output);
    EXPECT_TRUE(output.GetText().starts_with("Corvane v2.2\n")) << output.GetText();
    EXPECT_NE(output.GetText().find("Usage:"), std::string::npos);
}
