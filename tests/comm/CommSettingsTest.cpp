#include "platform/comm/CommSettings.h"

#include <gtest/gtest.h>

namespace {

DCB MakeDcb(DWORD speed, int byteSize, int parity, int stopBits) {
    DCB dcb{};
    dcb.BaudRate = speed;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    dcb.ByteSize = static_cast<BYTE>(byteSize);
    dcb.Parity = static_cast<BYTE>(parity);
    dcb.StopBits = static_cast<BYTE>(stopBits);
    return dcb;
}

termios2 MakeSettings(const DCB& dcb) {
    termios2 settings{};
    EXPECT_TRUE(platform::ApplyDcb(dcb, settings));
    return settings;
}

const DCB PLAIN = MakeDcb(9600, 8, NOPARITY, ONESTOPBIT);

} // namespace

TEST(CommSettings, FormatsGoBothWaysAndReplaceTheFormerOneOnly) {
    struct {
        DCB dcb;
        tcflag_t flags;
    } const cases[] = {
        {MakeDcb(250000, 8, NOPARITY, ONESTOPBIT), CS8},
        {MakeDcb(250000, 7, EVENPARITY, ONESTOPBIT), CS7 | PARENB},
        {MakeDcb(250000, 7, ODDPARITY, TWOSTOPBITS), CS7 | PARENB | PARODD | CSTOPB},
        {MakeDcb(250000, 6, MARKPARITY, ONESTOPBIT), CS6 | PARENB | PARODD | CMSPAR},
        {MakeDcb(250000, 5, SPACEPARITY, ONE5STOPBITS), CS5 | PARENB | CMSPAR | CSTOPB},
    };
    termios2 settings{};
    settings.c_cflag = CS5 | CSTOPB | PARENB | PARODD | CMSPAR | CRTSCTS | B1200 | HUPCL | CREAD;
    settings.c_iflag = IXON | IXOFF | IGNBRK;
    for (const auto& row : cases) {
        ASSERT_TRUE(platform::ApplyDcb(row.dcb, settings));
        EXPECT_EQ(settings.c_cflag, row.flags | BOTHER | HUPCL | CREAD);
        EXPECT_EQ(settings.c_iflag, tcflag_t{IGNBRK});
        EXPECT_EQ(settings.c_ospeed, 250000u);
        EXPECT_EQ(settings.c_ispeed, 250000u);
        const DCB back = platform::DcbOfSettings(settings);
        EXPECT_EQ(back.BaudRate, 250000u);
        EXPECT_EQ(back.ByteSize, row.dcb.ByteSize);
        EXPECT_EQ(back.Parity, row.dcb.Parity);
        EXPECT_EQ(back.StopBits, row.dcb.StopBits);
    }
}

TEST(CommSettings, WhatTheKernelCannotDoIsRefused) {
    DCB ctsWithoutRts = PLAIN;
    ctsWithoutRts.fOutxCtsFlow = 1;
    const DCB cases[] = {
        MakeDcb(0, 8, NOPARITY, ONESTOPBIT),         MakeDcb(9600, 4, NOPARITY, ONESTOPBIT),
        MakeDcb(9600, 9, NOPARITY, ONESTOPBIT),      MakeDcb(9600, 8, SPACEPARITY + 1, ONESTOPBIT),
        MakeDcb(9600, 8, NOPARITY, ONE5STOPBITS),    MakeDcb(9600, 5, NOPARITY, TWOSTOPBITS),
        MakeDcb(9600, 8, NOPARITY, TWOSTOPBITS + 1), ctsWithoutRts,
    };
    for (const DCB& dcb : cases) {
        termios2 settings{};
        settings.c_cflag = CS7;
        EXPECT_FALSE(platform::ApplyDcb(dcb, settings)) << &dcb - cases;
        EXPECT_EQ(settings.c_cflag, tcflag_t{CS7});
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
    const termios2 asked = MakeSettings(MakeDcb(100000, 7, MARKPARITY, TWOSTOPBITS));
    const auto isTaken = [&](speed_t speed, tcflag_t toggled, bool pseudoTerminal) {
        termios2 inPlace = asked;
        inPlace.c_ospeed = speed;
        inPlace.c_cflag ^= toggled;
        return platform::AreSettingsTaken(asked, inPlace, pseudoTerminal);
    };
    EXPECT_TRUE(isTaken(103000, 0, false));
    EXPECT_TRUE(isTaken(97000, 0, false));
    EXPECT_FALSE(isTaken(103001, 0, false));
    EXPECT_FALSE(isTaken(96999, 0, true));
    for (tcflag_t flag :
         {tcflag_t{CMSPAR}, tcflag_t{PARENB}, tcflag_t{CSTOPB}, tcflag_t{CS6 ^ CS7}}) {
        EXPECT_FALSE(isTaken(100000, flag, false)) << flag;
        EXPECT_TRUE(isTaken(100000, flag, true)) << flag;
    }
    EXPECT_FALSE(isTaken(100000, CRTSCTS, true));

    // The kind of parity is of no consequence where there is none.
    const termios2 plain = MakeSettings(PLAIN);
    termios2 inPlace = plain;
    inPlace.c_cflag |= PARODD;
    EXPECT_TRUE(platform::AreSettingsTaken(plain, inPlace, false));
}
