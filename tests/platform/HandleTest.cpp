#include "platform/Clock.h"
#include "platform/Error.h"
#include "tests/platform/TestHandle.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

HANDLE HandleOf(std::uintptr_t value) {
    return reinterpret_cast<HANDLE>(value);
}

void ExpectInvalid(HANDLE handle) {
    SetLastError(ERROR_SUCCESS);
    EXPECT_FALSE(SetEvent(handle));
    EXPECT_EQ(WaitForSingleObject(handle, INFINITE), WAIT_FAILED);
    EXPECT_FALSE(CloseHandle(handle));
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

} // namespace

TEST(Handle, ClosedReusedAndInventedOnesAreRecognised) {
    const HANDLE closed = CreateEventA(nullptr, TRUE, TRUE, nullptr);
    ASSERT_NE(closed, nullptr);
    const auto value = reinterpret_cast<std::uintptr_t>(closed);
    for (const std::uintptr_t offset : {1, 2, 3})
        ExpectInvalid(HandleOf(value + offset));
    ExpectInvalid(HandleOf(value + (std::uintptr_t{1} << 32)));
    EXPECT_TRUE(CloseHandle(closed));
    ExpectInvalid(closed);

    const CTestHandle successor = MakeEvent(true, true);
    ExpectInvalid(closed);
    ExpectInvalid(nullptr);
    ExpectInvalid(INVALID_HANDLE_VALUE);
    ExpectInvalid(HandleOf(0x7FFFFFFC));
    EXPECT_EQ(WaitForSingleObject(successor, 0), WAIT_OBJECT_0);
    EXPECT_FALSE(TerminateThread(successor, 1)) << "one of another kind";
    EXPECT_EQ(GetLastError(), ERROR_INVALID_HANDLE);
}

TEST(Handle, ClosingEndsTheWaitsOfOthers) {
    for (int round = 0; round < 200; ++round) {
        const HANDLE event = CreateEventA(nullptr, FALSE, FALSE, nullptr);
        const CTestHandle other = MakeEvent(true, false);
        DWORD result = WAIT_TIMEOUT;
        DWORD error = ERROR_SUCCESS;
        auto wait = [&] {
            const HANDLE handles[] = {other, event};
            result = WaitForMultipleObjects(2, handles, FALSE, INFINITE);
            error = GetLastError();
        };
        const CTestHandle thread = StartThread(wait);
        if (round % 2 != 0)
            Sleep(0);
        EXPECT_TRUE(CloseHandle(event));
        EXPECT_TRUE(AwaitEnd(thread));
        EXPECT_EQ(result, WAIT_FAILED);
        EXPECT_EQ(error, ERROR_INVALID_HANDLE);
    }
}
