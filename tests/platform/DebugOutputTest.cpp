#include "platform/DebugOutput.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace {

std::vector<std::string>* g_heard = nullptr;

// Not guarded by itself: the stream brings one text at a time.
void Listen(LPCSTR text) {
    g_heard->push_back(text);
    errno = ERANGE;
    SetLastError(ERROR_GEN_FAILURE);
}

int Format(char* output, std::size_t size, LPCSTR format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const int length = wvsprintfA(output, size, format, arguments);
    va_end(arguments);
    return length;
}

} // namespace

TEST(DebugOutput, TextsOfManyThreadsArriveWhole) {
    constexpr int THREADS = 4;
    constexpr int TEXTS = 300;
    std::vector<std::string> heard;
    g_heard = &heard;
    platform::SetDebugListener(&Listen);
    std::atomic<int> next = 0;
    auto write = [&] {
        const auto letter = static_cast<char>('a' + next++);
        const std::string text = std::string(700, letter) + "%s%n\n" + std::string(700, letter);
        for (int i = 0; i < TEXTS; ++i)
            OutputDebugStringA(text.c_str());
    };
    std::vector<CTestHandle> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.push_back(StartThread(write));
    for (const CTestHandle& thread : threads)
        EXPECT_TRUE(AwaitEnd(thread));
    platform::SetDebugListener(nullptr);
    std::map<std::string, int> counts;
    for (const std::string& text : heard)
        ++counts[text];
    EXPECT_EQ(counts.size(), std::size_t{THREADS});
    for (const auto& [text, count] : counts)
        EXPECT_EQ(count, TEXTS);
}

TEST(DebugOutput, LeavesTheErrorsOfTheThreadAlone) {
    std::vector<std::string> heard;
    g_heard = &heard;
    for (const auto listener : {&Listen, static_cast<platform::DebugListener>(nullptr)}) {
        platform::SetDebugListener(listener);
        errno = ENOENT;
        SetLastError(ERROR_HANDLE_EOF);
        OutputDebugStringA("platform test\n");
        OutputDebugStringA(nullptr);
        EXPECT_EQ(errno, ENOENT);
        EXPECT_EQ(GetLastError(), ERROR_HANDLE_EOF);
    }
    EXPECT_EQ(heard, std::vector<std::string>{"platform test\n"});
}

TEST(DebugOutput, FormatsWithinTheBuffer) {
    char buffer[8];
    EXPECT_EQ(Format(buffer, sizeof buffer, "%d\r\n%s", 12, "ab"), 6);
    EXPECT_STREQ(buffer, "12\r\nab");
    EXPECT_EQ(Format(buffer, sizeof buffer, "%s", "0123456789"), 7);
    EXPECT_STREQ(buffer, "0123456");
    EXPECT_EQ(Format(buffer, 1, "%s", "x"), 0);
    EXPECT_STREQ(buffer, "");
    buffer[0] = 'k';
    EXPECT_EQ(Format(buffer, 0, "%s", "x"), 0);
    EXPECT_EQ(buffer[0], 'k');
    const wchar_t noCharacter[] = {static_cast<wchar_t>(0x7FFFFFFF), 0};
    EXPECT_EQ(Format(buffer, sizeof buffer, "a%ls", noCharacter), 0);
    EXPECT_STREQ(buffer, "");
}
