#include "common/TextFile.h"

#include "platform/Error.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <vector>

#include <unistd.h>

namespace {

using namespace std::string_literals;

class CTextFileTest : public testing::Test {
  protected:
    ~CTextFileTest() override { std::filesystem::remove(m_path); }

    void Store(const std::string& content) {
        std::ofstream(m_path, std::ios::binary | std::ios::trunc) << content;
    }

    std::vector<std::string> Lines() {
        std::vector<std::string> lines;
        std::string line;
        EXPECT_TRUE(m_file.Open(m_path.c_str()));
        while (m_file.ReadLine(line) == EReadLine::Line)
            lines.push_back(line);
        EXPECT_EQ(m_file.ReadLine(line), EReadLine::End);
        return lines;
    }

    const std::string m_path = testing::TempDir() + "textfile" + std::to_string(getpid());
    CTextFile m_file;
};

TEST_F(CTextFileTest, LineEnds) {
    const std::string acrossBuffers(16 * 1024 - 1, 'x');
    const struct {
        std::string content;
        std::vector<std::string> lines;
    } cases[] = {
        {"", {}},
        {"one\ntwo\r\nthree", {"one", "two", "three"}},
        {"ATZ\r\r\n\r\nATI\r", {"ATZ\r", "", "ATI\r"}},
        {"a\rb\x1A"s + "c\0d\n"s, {"a\rb\x1A"s + "c\0d"s}},
        {acrossBuffers + "\r\nnext\n", {acrossBuffers, "next"}},
        {acrossBuffers + "y\nnext", {acrossBuffers + "y", "next"}},
    };
    for (const auto& row : cases) {
        Store(row.content);
        EXPECT_EQ(Lines(), row.lines) << testing::PrintToString(row.content.substr(0, 40));
    }
}

TEST_F(CTextFileTest, ALineHasABoundAndTheFileEndsThere) {
    const std::string longest(CTextFile::MAX_LINE_LENGTH, 'x');
    for (const char* const end : {"", "\n", "\r\n"}) {
        Store(longest + end);
        EXPECT_TRUE(Lines() == std::vector<std::string>{longest});
        Store(longest + 'x' + end + "next\n");
        std::string line = "former";
        ASSERT_TRUE(m_file.Open(m_path.c_str()));
        EXPECT_EQ(m_file.ReadLine(line), EReadLine::Error);
        EXPECT_EQ(GetLastError(), ERROR_NOT_ENOUGH_MEMORY);
        EXPECT_EQ(line, "");
        EXPECT_EQ(m_file.ReadLine(line), EReadLine::Error);
    }
}

TEST_F(CTextFileTest, FailuresAreNoEnd) {
    std::string line;
    EXPECT_FALSE(m_file.Open((m_path + "missing").c_str()));
    EXPECT_EQ(GetLastError(), ERROR_FILE_NOT_FOUND);
    EXPECT_FALSE(m_file.Open("/"));
    EXPECT_EQ(GetLastError(), ERROR_ACCESS_DENIED);
    // Address 0 of a process cannot be read.
    ASSERT_TRUE(m_file.Open("/proc/self/mem"));
    EXPECT_EQ(m_file.ReadLine(line), EReadLine::Error);
}

} // namespace
