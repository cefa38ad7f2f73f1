// The program in a pipeline: standard input or output, or both, are no terminal.
#include "tests/endtoend/SessionTest.h"

#include <fcntl.h>
#include <unistd.h>

class CPipeTest : public CSessionTest {
  protected:
    CPipeTest() { m_pump.Add(m_output); }

    // Runs the program with the pipe as its input; the test holds no copy of its ends then.
    void StartPiped() {
        StartWith({m_device.GetPath()}, m_input.reader.Get(), m_output.GetWriter());
        m_input.reader.Reset();
        m_output.CloseWriter();
    }

    // Writes as much as the pipe takes each time.
    void Feed(std::string bytes) {
        fcntl(m_input.writer.Get(), F_SETFL, O_NONBLOCK);
        ASSERT_TRUE(m_pump.RunUntil([&] {
            const ssize_t count = write(m_input.writer.Get(), bytes.data(), bytes.size());
            bytes.erase(0, count > 0 ? static_cast<std::size_t>(count) : 0);
            return bytes.empty();
        }));
    }
    // The program's memory in pages.
    long GetMemory() const {
        const std::string path = "/proc/" + std::to_string(m_program->GetId()) + "/statm";
        return std::stol(ReadWholeFile(path).substr(ReadWholeFile(path).find(' ')));
    }

    CCollector m_output;
    Pipe m_input;
};

TEST_F(CPipeTest, LongInputIsExactPlainTextComesOutAndItEnds) {
    std::string input;
    while (input.size() < 300000)
        input += "AT+CMGS=" + std::to_string(input.size()) + "\r\n\x1A\x03\x1B[A\xC3\xA9";
    StartPiped();
    m_device.SetReadLimit(1024);
    Feed(input);
    m_input.writer.Reset();
    EXPECT_TRUE(DeviceGets("ATE1V1\r" + input));
    // An answer within the silent second is still shown.
    m_device.Send("\x1B[31mlate\r\n\x1B[0m answer");
    EXPECT_TRUE(Ends());
    EXPECT_TRUE(m_pump.RunUntil([this] { return m_output.HasEnded(); }));
    const std::string& text = m_output.GetText();
    EXPECT_TRUE(text.starts_with("Corvane v2.2\nPress Alt+F4 to exit.")) << text;
    EXPECT_TRUE(text.ends_with("late\n answer")) << text;
    EXPECT_EQ(text.find_first_of("\x1B\r"), std::string::npos) << text;
    // The terminal was not touched.
    EXPECT_EQ(m_terminal.GetOutput(), "prompt>");
}

// With a device that is always behind, and then gone.
TEST_F(CPipeTest, EndlessInputTakesNoMoreAndMoreMemory) {
    constexpr std::size_t kMostTypedAhead = 4 << 20;
    StartPiped();
    m_device.SetReadLimit(0);
    Feed(std::string(kMostTypedAhead, 'x'));
    m_device.SetReadLimit(65536);
    Feed(std::string(kMostTypedAhead, 'x'));
    const long before = GetMemory();
    Feed(std::string(2 * kMostTypedAhead, 'x'));
    EXPECT_LT((GetMemory() - before) * sysconf(_SC_PAGESIZE), long{kMostTypedAhead});
    m_device.Vanish();
    EXPECT_TRUE(Ends());
    EXPECT_GE(Screen().FindRow("wirelet: The device " + m_device.GetPath() + " is gone"), 0);
}

// Without a reader there is nobody to type for: it ends by itself, and says why.
TEST_F(CPipeTest, OutputThatNobodyReads) {
    StartWith({m_device.GetPath()}, -1, m_output.GetWriter());
    m_output.CloseWriter();
    ASSERT_TRUE(DeviceGets("ATE1V1\r"));
    m_output.CloseReader();
    m_device.SendEndlessly("unseen ");
    ASSERT_TRUE(Ends());
    EXPECT_GE(Screen().FindRow("standard output takes no more"), 0);
}
