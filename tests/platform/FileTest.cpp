#include "platform/File.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

namespace {

class File : public testing::Test {
  protected:
    void SetUp() override {
        char name[] = "/tmp/wirelet-file-XXXXXX";
        ASSERT_NE(mkdtemp(name), nullptr);
        m_folder = name;
    }
    void TearDown() override { std::filesystem::remove_all(m_folder); }

    std::string Path(const std::string& name) const { return m_folder + "/" + name; }
    std::string Content(const std::string& name) const {
        std::ifstream stream(Path(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    static HANDLE Create(const std::string& path) {
        return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    static bool Write(HANDLE file, const std::string& text) {
        DWORD count = 0;
        return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &count, nullptr) &&
               count == text.size();
    }
    std::string m_folder;
};

} // namespace

// Neither a refused open nor a reader that comes and goes ends the writer's hold on the file.
TEST_F(File, ARefusedOpenLeavesTheOthersBytes) {
    const std::string bytes("a\0b\r\n", 5);
    CloseHandle(Create(Path("capture")));
    const CTestHandle first(Create(Path("capture")));
    EXPECT_TRUE(Write(first, bytes));
    EXPECT_EQ(Create(Path("capture")), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(Content("capture"), bytes);
    CloseHandle(CreateFileA(Path("capture").c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr));
    EXPECT_EQ(Create(Path("capture")), INVALID_HANDLE_VALUE);
    EXPECT_EQ(GetLastError(), ERROR_SHARING_VIOLATION);
}

TEST_F(File, AFullDiskIsReported) {
    const CTestHandle full(Create("/dev/full"));
    ASSERT_NE(static_cast<HANDLE>(full), INVALID_HANDLE_VALUE);
    DWORD count = 1;
    EXPECT_FALSE(WriteFile(full, "x", 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(count, 0U);
}
