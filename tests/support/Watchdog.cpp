// Every test program has this: a test that waits for something which does not come ends the
// program, and tells where it waits. So a wait in a test needs no limit of its own.
#include <gtest/gtest.h>

#include <csignal>
#include <execinfo.h>
#include <string_view>
#include <unistd.h>

// There with sanitizers.
extern "C" __attribute__((weak)) void __sanitizer_print_stack_trace();

namespace {

constexpr unsigned kPatience = 110; // seconds, a little less than what ctest gives a test

// On the main thread, in the middle of the wait.
void ShowWhereItWaits(int) {
    constexpr std::string_view text = "What this test waits for here does not come:\n";
    static_cast<void>(!write(STDERR_FILENO, text.data(), text.size()));
    if (__sanitizer_print_stack_trace) {
        __sanitizer_print_stack_trace();
    } else {
        void* frames[64];
        backtrace_symbols_fd(frames, backtrace(frames, std::size(frames)), STDERR_FILENO);
    }
    _exit(1);
}

class CWatchdog : public testing::EmptyTestEventListener {
    void OnTestStart(const testing::TestInfo&) override {
        std::signal(SIGALRM, ShowWhereItWaits);
        alarm(kPatience);
    }
    void OnTestEnd(const testing::TestInfo&) override { alarm(0); }
};

const bool g_isWatched = [] {
    testing::UnitTest::GetInstance()->listeners().Append(new CWatchdog);
    return true;
}();

} // namespace
