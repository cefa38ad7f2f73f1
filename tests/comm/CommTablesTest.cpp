#include "platform/Comm.h"
#include "platform/CommErrors.h"
#include "platform/CommQueue.h"

#include <gtest/gtest.h>

#include <climits>
#include <cstring>

TEST(CommErrors, MovedCountersBecomeBits) {
    serial_icounter_struct before{};
    before.frame = INT_MAX;
    serial_icounter_struct now = before;
    now.rx = 1000;
    now.cts = 4;
    EXPECT_EQ(platform::ErrorsBetween(before, now), 0u);
    now.frame = INT_MIN; // wrapped
    now.brk = 1;
    EXPECT_EQ(platform::ErrorsBetween(before, now), CE_FRAME | CE_BREAK);
    now = before;
    now.overrun = 7;
    now.parity = 1;
    now.buf_overrun = 1;
    EXPECT_EQ(platform::ErrorsBetween(before, now), CE_OVERRUN | CE_RXPARITY | CE_RXOVER);
}

TEST(CommName, PortNamesAndPaths) {
    const struct {
        const char* name;
        const char* path;
    } cases[] = {
        {"COM1", "/dev/ttyS0"},           {"com3:", "/dev/ttyS2"},
        {"\\\\.\\COM12", "/dev/ttyS11"},  {"\\\\.\\Com256:", "/dev/ttyS255"},
        {"/dev/ttyUSB0", "/dev/ttyUSB0"}, {"/", "/"},
    };
    for (const auto& row : cases)
        EXPECT_EQ(platform::DevicePathOfPort(row.name), row.path);
    for (const char* name : {"", "COM", "COM0", "COM:", "COM-1", "COM1x", "COM01", "COM 1",
                             "COM1::", "COM99999999999999999999", "\\\\.\\", "\\\\.\\LPT1", "LPT1",
                             "ttyS0", "dev/ttyS0", "\\\\.\\/dev/ttyS0"})
        EXPECT_EQ(platform::DevicePathOfPort(name), "") << name;
    EXPECT_EQ(platform::DevicePathOfPort(nullptr), "");
}

TEST(CommQueue, KeepsItsBytesWhenItShrinksAndGrows) {
    platform::CCommQueue queue;
    ASSERT_TRUE(queue.Resize(8));
    std::memcpy(queue.Room(), "abcdefgh", 8);
    queue.Added(8);
    char taken[8] = {};
    EXPECT_EQ(queue.Take(taken, 3), 3u);
    ASSERT_TRUE(queue.Resize(2));
    EXPECT_EQ(queue.Count(), 5u);
    EXPECT_EQ(queue.Free(), 0u);
    ASSERT_TRUE(queue.Resize(7));
    EXPECT_EQ(queue.Take(taken, 1), 1u);
    EXPECT_EQ(queue.Free(), 3u);
    std::memcpy(queue.Room(), "ijk", 3);
    queue.Added(3);
    EXPECT_EQ(queue.Take(taken, sizeof taken), 7u);
    EXPECT_EQ(std::string(taken, 7), "efghijk");
    EXPECT_TRUE(queue.IsEmpty());
}
