#include "common/TextFile.h"

#include "platform/Error.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

namespace {

using namespace std::string_literals;

class CTextFileTest : public testing::Test {
  protected:
    // Reads to the end, which is of this kind and stays.
    std::vector<std::string> LinesOf(const std::string& content, EReadLine end = EReadLine::End) {
        std::vector<std::string> lines;
        EXPECT_TRUE(m_file.Open(m_folder.Write("file", content).c_str()));
        for (; m_file.ReadLine(m_line) == EReadLine::Line; lines.push_back(m_line))
            continue;
        EXPECT_EQ(m_file.ReadLine(m_line), end);
        return lines;
    }

    CTempFolder m_folder;
    CTextFile m_file;
    std::string m_line = "former";
};

TEST_F(CTextFileTest, LineEnds) {
    const std::string acrossBuffers(16 * 1024 - 1, 'x');
    const std::pair<std::string, std::vector<std::string>> rows[] = {
        {"", {}},
        {"\xEF\xBB\xBFone\n\xEF\xBB\xBF\n", {"one", "\xEF\xBB\xBF"}},
        {"ATZ\r\r\n\r\nATI\r", {"ATZ\r", "", "ATI\r"}},
        {"a\rb\x1A"s + "c\0d\n"s, {"a\rb\x1A"s + "c\0d"s}},
        {acrossBuffers + "\r\nnext\n", {acrossBuffers, "next"}},
        {acrossBuffers + "y\nnext", {acrossBuffers + "y", "next"}},
    };
    for (const auto& [content, lines] : rows)
        EXPECT_EQ(LinesOf(content), lines) << testing::PrintToString(content.substr(0, 40));
}

TEST_F(CTextFileTest, ALineHasABoundAndTheFileEndsThere) {
    const std::string longest(CTextFile::kMaxLineLength, 'x');
    for (const char* const end : {"", "\n", "\r\n"}) {
        EXPECT_TRUE(LinesOf(longest + end) == std::vector<std::string>{longest});
        EXPECT_TRUE(LinesOf(longest + 'x' + end + "next\n", EReadLine::Error).empty());
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(m_line, "");
    }
}

TEST_F(CTextFileTest, FailuresAreNoEnd) {
    EXPECT_FALSE(m_file.Open(m_folder.GetPath("missing").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(m_file.Open("/"));
    // Address 0 of a process cannot be read.
    ASSERT_TRUE(m_file.Open("/proc/self/mem"));
    EXPECT_EQ(m_file.ReadLine(m_line), EReadLine::Error);
}

} // namespace
