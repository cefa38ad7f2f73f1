#include "platform/Comm.h"
#include "platform/comm/CommErrors.h"

#include <gtest/gtest.h>

#include <climits>

TEST(CommErrors, MovedCountersBecomeBits) {
    serial_icounter_struct before{};
    before.frame = INT_MAX;
    serial_icounter_struct now = before;
    now.cts = 4;
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
