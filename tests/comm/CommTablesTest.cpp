// The pure pieces of a port: line settings, error bits and port names.
#include "platform/Comm.h"
#include "platform/comm/CommErrors.h"
#include "platform/comm/CommSettings.h"

#include <gtest/gtest.h>

#include <climits>

namespace {

using platform::AreSettingsTaken;

constexpr tcflag_t kRefused = 0xFFFFFFFF;

DCB MakeDcb(DWORD speed, BYTE byteSize, BYTE parity, BYTE stopBits) {
    DCB dcb{};
    dcb.BaudRate = speed;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    dcb.ByteSize = byteSize;
    dcb.Parity = parity;
    dcb.StopBits = stopBits;
    return dcb;
}

TEST(CommSettings, FormatsGoBothWaysAndReplaceTheFormerOneOnly) {
    DCB ctsWithoutRts = MakeDcb(9600, 8, NOPARITY, ONESTOPBIT);
    ctsWithoutRts.fOutxCtsFlow = 1;
    const std::pair<DCB, tcflag_t> rows[] = {
        {MakeDcb(250000, 8, NOPARITY, ONESTOPBIT), CS8},
        {MakeDcb(1, 7, EVENPARITY, ONESTOPBIT), CS7 | PARENB},
        {MakeDcb(9600, 7, ODDPARITY, TWOSTOPBITS), CS7 | PARENB | PARODD | CSTOPB},
        {MakeDcb(9600, 6, MARKPARITY, ONESTOPBIT), CS6 | PARENB | PARODD | CMSPAR},
        {MakeDcb(9600, 5, SPACEPARITY, ONE5STOPBITS), CS5 | PARENB | CMSPAR | CSTOPB},
        {MakeDcb(0, 8, NOPARITY, ONESTOPBIT), kRefused},
        {MakeDcb(9600, 9, NOPARITY, ONESTOPBIT), kRefused},
        {MakeDcb(9600, 8, SPACEPARITY + 1, ONESTOPBIT), kRefused},
        {MakeDcb(9600, 8, NOPARITY, ONE5STOPBITS), kRefused},
        {ctsWithoutRts, kRefused},
    };
    termios2 former{};
    former.c_cflag = CS5 | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS | B1200 | HUPCL | CREAD;
    former.c_iflag = IXON | IXOFF | IGNBRK;
    for (const auto& [dcb, flags] : rows) {
        SCOPED_TRACE(flags);
        termios2 settings = former;
        ASSERT_EQ(platform::ApplyDcb(dcb, settings), flags != kRefused);
        EXPECT_EQ(settings.c_cflag,
                  flags == kRefused ? former.c_cflag : flags | BOTHER | HUPCL | CREAD);
        if (flags == kRefused)
            continue;
        EXPECT_EQ(settings.c_iflag, tcflag_t{IGNBRK});
        EXPECT_EQ(settings.c_ispeed, dcb.BaudRate);
        termios2 again{};
        EXPECT_TRUE(platform::ApplyDcb(platform::DcbOfSettings(settings), again));
        EXPECT_EQ(again.c_cflag, flags | BOTHER);
        EXPECT_EQ(again.c_ospeed, dcb.BaudRate);
    }
}

TEST(CommSettings, OpeningKeepsOnlyChosenSoftwareFlowControl) {
    termios2 settings{};
    settings.c_iflag = IXON | IXOFF | IXANY | ICRNL | ISTRIP | INPCK | PARMRK;
    settings.c_oflag = OPOST;
    settings.c_cflag = CS7 | PARENB | CRTSCTS | B2400;
    settings.c_lflag = ECHO;
    termios2 chosen = settings;
    platform::MakeRaw(chosen);
    EXPECT_EQ(chosen.c_iflag, tcflag_t{IXON | IXOFF | BRKINT});
    EXPECT_EQ(chosen.c_oflag, 0u);
    EXPECT_EQ(chosen.c_lflag, tcflag_t{NOFLSH});
    EXPECT_EQ(chosen.c_cflag, settings.c_cflag | CLOCAL | CREAD);
    EXPECT_EQ(chosen.c_cc[VMIN], 1);

    settings.c_lflag |= ICANON;
    platform::MakeRaw(settings);
    EXPECT_EQ(settings.c_iflag, tcflag_t{BRKINT});
}

TEST(CommSettings, ReplacedSettingsAreNoticed) {
    const struct {
        speed_t speed;
        tcflag_t toggled;
        bool isTaken;
        bool isTakenOnPseudoTerminal;
    } rows[] = {
        {103000, 0, true, true},         {97000, 0, true, true},
        {103001, 0, false, false},       {96999, 0, false, false},
        {100000, CMSPAR, false, true},   {100000, PARENB, false, true},
        {100000, CSTOPB, false, true},   {100000, CS6 ^ CS7, false, true},
        {100000, CRTSCTS, false, false},
    };
    termios2 asked{};
    ASSERT_TRUE(platform::ApplyDcb(MakeDcb(100000, 7, MARKPARITY, TWOSTOPBITS), asked));
    for (const auto& row : rows) {
        termios2 inPlace = asked;
        inPlace.c_ospeed = row.speed;
        inPlace.c_cflag ^= row.toggled;
        EXPECT_EQ(AreSettingsTaken(asked, inPlace, false), row.isTaken) << &row - rows;
        EXPECT_EQ(AreSettingsTaken(asked, inPlace, true), row.isTakenOnPseudoTerminal)
            << &row - rows;
    }
    // The kind of parity is of no consequence where there is none.
    ASSERT_TRUE(platform::ApplyDcb(MakeDcb(100000, 7, NOPARITY, TWOSTOPBITS), asked));
    termios2 inPlace = asked;
    inPlace.c_cflag |= PARODD;
    EXPECT_TRUE(AreSettingsTaken(asked, inPlace, false));
}

TEST(CommErrors, MovedCountersBecomeBits) {
    serial_icounter_struct before{};
    serial_icounter_struct now{};
    before.frame = INT_MAX;
    now.frame = INT_MIN; // wrapped
    now.cts = now.brk = 1;
    EXPECT_EQ(platform::ErrorsBetween(before, now), CE_FRAME | CE_BREAK);
    now.frame = INT_MAX;
    now.brk = 0;
    now.overrun = now.parity = now.buf_overrun = 1;
    EXPECT_EQ(platform::ErrorsBetween(before, now), CE_OVERRUN | CE_RXPARITY | CE_RXOVER);
}

TEST(CommName, PortNamesAndPaths) {
    const std::pair<const char*, const char*> rows[] = {
        {"com3:", "/dev/ttyS2"},
        {"\\\\.\\Com256:", "/dev/ttyS255"},
        {"/dev/ttyUSB0", "/dev/ttyUSB0"},
    };
    for (const auto& [name, path] : rows)
        EXPECT_EQ(platform::DevicePathOfPort(name), path);
    for (const char* name : {"", "COM", "COM0", "COM:", "COM-1", "COM1x", "COM01", "COM 1",
                             "COM99999999999999999999", "\\\\.\\LPT1", "\\\\.\\/dev/ttyS0"})
        EXPECT_EQ(platform::DevicePathOfPort(name), "") << name;
    EXPECT_EQ(platform::DevicePathOfPort(nullptr), "");
}

} // namespace
