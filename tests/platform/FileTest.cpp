#include "platform/File.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>
#include <sys/stat.h>
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
    static HANDLE Create(const std::string& path, DWORD share = 0) {
        return CreateFileA(path.c_str(), GENERIC_READ | GENERIC_WRITE, share, nullptr,
                           CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    static HANDLE OpenToRead(const std::string& path) {
        return CreateFileA(path.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING,
                           FILE_ATTRIBUTE_NORMAL, nullptr);
    }
    static std::string ReadAll(HANDLE file) {
        std::string content;
        char buffer[5];
        DWORD count = 0;
        while (ReadFile(file, buffer, sizeof buffer, &count, nullptr) && count != 0)
            content.append(buffer, count);
        return content;
    }
    static bool Write(HANDLE file, const std::string& text) {
        DWORD count = 0;
        return WriteFile(file, text.data(), static_cast<DWORD>(text.size()), &count, nullptr) &&
               count == text.size();
    }
    static void ExpectRefused(HANDLE file, DWORD error) {
        EXPECT_EQ(file, INVALID_HANDLE_VALUE);
        EXPECT_EQ(GetLastError(), error);
    }

    std::string m_folder;
};

} // namespace

TEST_F(File, IsMadeEmptiedWrittenAndRead) {
    const std::string text = std::string("a\0b\r\n", 5) + "last";
    for (const std::string& content : {text + text, text}) {
        const HANDLE file = Create(Path("capture"));
        ASSERT_NE(file, INVALID_HANDLE_VALUE);
        EXPECT_TRUE(Write(file, content));
        EXPECT_EQ(WaitForSingleObject(file, 0), WAIT_FAILED);
        EXPECT_TRUE(CloseHandle(file));
        EXPECT_EQ(Content("capture"), content);
    }
    const CTestHandle file(OpenToRead(Path("capture")));
    EXPECT_EQ(ReadAll(file), text);
    EXPECT_FALSE(Write(file, "x"));
    EXPECT_EQ(GetLastError(), ERROR_WRITE_FAULT);
}

TEST_F(File, ARefusedOpenLeavesTheOthersBytes) {
    const CTestHandle first(Create(Path("capture")));
    EXPECT_TRUE(Write(first, "kept"));
    ExpectRefused(Create(Path("capture")), ERROR_SHARING_VIOLATION);
    EXPECT_EQ(Content("capture"), "kept");
    CloseHandle(OpenToRead(Path("capture")));
    ExpectRefused(Create(Path("capture")), ERROR_SHARING_VIOLATION);
}

TEST_F(File, OpenErrorsAreToldApart) {
    ExpectRefused(OpenToRead(Path("missing")), ERROR_FILE_NOT_FOUND);
    ExpectRefused(Create(Path("missing/capture")), ERROR_PATH_NOT_FOUND);
    ExpectRefused(Create(m_folder), ERROR_ACCESS_DENIED);
    ExpectRefused(OpenToRead(m_folder), ERROR_ACCESS_DENIED);
    ExpectRefused(Create(""), ERROR_FILE_NOT_FOUND);
    ExpectRefused(Create(Path(std::string(300, 'n'))), ERROR_PATH_NOT_FOUND);
    CloseHandle(Create(Path("plain")));
    ExpectRefused(Create(Path("plain/below")), ERROR_PATH_NOT_FOUND);
    ExpectRefused(CreateFileA(Path("plain").c_str(), GENERIC_READ, 0, nullptr, 1, 0, nullptr),
                  ERROR_INVALID_PARAMETER);
}

TEST_F(File, DevicesAreUsableAndAFullOneIsReported) {
    const CTestHandle full(Create("/dev/full"));
    ASSERT_NE(static_cast<HANDLE>(full), INVALID_HANDLE_VALUE);
    DWORD count = 1;
    EXPECT_FALSE(WriteFile(full, "x", 1, &count, nullptr));
    EXPECT_EQ(GetLastError(), ERROR_DISK_FULL);
    EXPECT_EQ(count, 0U);
    const CTestHandle nowhere(Create("/dev/null"));
    const CTestHandle nowhereElse(Create("/dev/null"));
    EXPECT_TRUE(Write(nowhere, "x"));
    EXPECT_TRUE(Write(nowhereElse, "y"));
}

// More than the FIFO holds, so that the writer has to wait for the reader; and neither end's
// opening waits for the other.
TEST_F(File, AFifoCarriesMoreThanItHolds) {
    ASSERT_EQ(mkfifo(Path("fifo").c_str(), 0600), 0);
    const std::string text(300'000, 'f');
    const CTestHandle reader(OpenToRead(Path("fifo")));
    HANDLE writer = Create(Path("fifo"));
    ASSERT_NE(writer, INVALID_HANDLE_VALUE);
    bool written = false;
    auto write = [&] {
        written = Write(writer, text);
        CloseHandle(writer);
    };
    const CTestHandle thread = StartThread(write);
    EXPECT_EQ(ReadAll(reader), text);
    EXPECT_TRUE(AwaitEnd(thread));
    EXPECT_TRUE(written);
}

TEST_F(File, TransfersOnOtherHandlesAreRefused) {
    const CTestHandle event = MakeEvent(true, true);
    OVERLAPPED record{};
    char byte = 0;
    DWORD count = 1;
    for (const HANDLE handle : {static_cast<HANDLE>(event), INVALID_HANDLE_VALUE}) {
        EXPECT_FALSE(ReadFile(handle, &byte, 1, &count, nullptr));
        EXPECT_FALSE(WriteFile(handle, &byte, 1, nullptr, nullptr));
        EXPECT_FALSE(GetOverlappedResult(handle, &record, &count, FALSE));
        EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
    }
    EXPECT_EQ(count, 0U);
}
