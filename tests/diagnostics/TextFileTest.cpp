#include "common/TextFile.h"

#include "platform/Error.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

class CTextFileTest : public testing::Test {
  protected:
    void Open(const std::string& content) {
        ASSERT_TRUE(m_file.Open(m_folder.Write("file", content).c_str()));
    }
    std::vector<std::string> LinesOf(const std::string& content) {
        std::vector<std::string> lines;
        Open(content);
        while (m_file.ReadLine(m_line) == EReadLine::Line)
            lines.push_back(m_line);
        EXPECT_EQ(m_file.ReadLine(m_line), EReadLine::End);
        return lines;
    }

    CTempFolder m_folder;
    CTextFile m_file;
    std::string m_line = "former";
};

TEST_F(CTextFileTest, LineEnds) {
    const std::string acrossBuffers(16 * 1024 - 1, 'x');
    const struct {
        std::string content;
        std::vector<std::string> lines;
    } cases[] = {
        {"", {}},
        {"\xEF\xBB\xBFone\n\xEF\xBB\xBF\n", {"one", "\xEF\xBB\xBF"}},
        {"one\ntwo\r\nthree", {"one", "two", "three"}},
        {"ATZ\r\r\n\r\nATI\r", {"ATZ\r", "", "ATI\r"}},
        {"a\rb\x1A"s + "c\0d\n"s, {"a\rb\x1A"s + "c\0d"s}},
        {acrossBuffers + "\r\nnext\n", {acrossBuffers, "next"}},
        {acrossBuffers + "y\nnext", {acrossBuffers + "y", "next"}},
    };
    for (const auto& row : cases) {
        EXPECT_EQ(LinesOf(row.content), row.lines)
            << testing::PrintToString(row.content.substr(0, 40));
    }
}

TEST_F(CTextFileTest, ALineHasABoundAndTheFileEndsThere) {
    const std::string longest(CTextFile::kMaxLineLength, 'x');
    for (const char* const end : {"", "\n", "\r\n"}) {
        EXPECT_TRUE(LinesOf(longest + end) == std::vector<std::string>{longest});
        Open(longest + 'x' + end + "next\n");
        EXPECT_EQ(m_file.ReadLine(m_line), EReadLine::Error);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(m_line, "");
        EXPECT_EQ(m_file.ReadLine(m_line), EReadLine::Error);
    }
}

TEST_F(CTextFileTest, FailuresAreNoEnd) {
    EXPECT_FALSE(m_file.Open(m_folder.GetPath("missing").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(m_file.Open("/"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    // Address 0 of a process cannot be read.
    ASSERT_TRUE(m_file.Open("/proc/self/mem"));
    EXPECT_EQ(m_file.ReadLine(m_line), EReadLine::Error);
}

} // namespace
