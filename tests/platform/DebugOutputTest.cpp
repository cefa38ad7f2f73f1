#include "platform/DebugOutput.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

std::vector<std::string>* g_heard = nullptr;

// Not guarded by itself: the stream brings one text at a time.
void Listen(LPCSTR text) {
    g_heard->push_back(text);
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
        const std::string half(700, static_cast<char>('a' + next++));
        const std::string text = half + "%s%n\n" + half;
        for (int i = 0; i < TEXTS; ++i)
            OutputDebugStringA(text.c_str());
    };
    std::vector<std::thread> threads;
    for (int i = 0; i < THREADS; ++i)
        threads.emplace_back(write);
    for (std::thread& thread : threads)
        thread.join();
    platform::SetDebugListener(nullptr);
    for (int i = 0; i < THREADS; ++i) {
        const std::string half(700, static_cast<char>('a' + i));
        EXPECT_EQ(std::count(heard.begin(), heard.end(), half + "%s%n\n" + half), TEXTS);
    }
}
