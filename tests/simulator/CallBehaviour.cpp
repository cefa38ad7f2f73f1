// Dialling, data mode, escaping from it, and calls that come in. All times are the test's own.
#include "tests/simulator/TestModem.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

const std::string connectLine = "\r\nCONNECT\r\n";
const std::string noCarrierLine = "\r\nNO CARRIER\r\n";
const std::string ringLine = "\r\nRING\r\n";

// Dialled a number that answers; data mode has just begun.
CTestModem Connected(const SSimulatorProfile& profile = QuietProfile()) {
    CTestModem modem(profile);
    EXPECT_EQ(modem.Type("ATDT 555-1\r\n"), "");
    EXPECT_EQ(modem.Wait(1000), connectLine);
    return modem;
}

TEST(Dialling, ResultByNumber) {
    SSimulatorProfile profile = QuietProfile();
    profile.dialTime = 500;
    profile.dialRules = {
        {"99", EResult::Busy}, {"9", EResult::Connect}, {"0", EResult::NoDialtone}};
    struct SCase {
        const char* typed;
        std::string answer;
    };
    const SCase cases[] = {
        {"ATD1\r", connectLine},
        {"ATDT(555) 12\r", "\r\nBUSY\r\n"},
        {"ATX1D2\r", noCarrierLine},
        {"ATDP3\r", "\r\nNO ANSWER\r\n"},
        {"ATD4\r", noCarrierLine},
        {"ATD\r", noCarrierLine},
        {"ATD199\r", "\r\nBUSY\r\n"},
        {"ATD19\r", connectLine},
        {"ATV0D2\r", "7\r"},
        {"ATV0D3\r", "8\r"},
        {"ATD0\r", "\r\nNO DIALTONE\r\n"},
        {"ATV0D1\r", "1\r"},
    };
    for (const SCase& one : cases) {
        CTestModem modem(profile);
        EXPECT_EQ(modem.Type(one.typed), "") << one.typed;
        EXPECT_EQ(modem.Wait(499), "") << one.typed;
        EXPECT_EQ(modem.Wait(1), one.answer) << one.typed;
    }
    EXPECT_EQ(CTestModem(profile).Type("ATD1;\r"), okLine);
}

TEST(Dialling, AnyKeyAborts) {
    CTestModem modem(QuietProfile());
    EXPECT_EQ(modem.Type("ATD1\r\n"), "");
    EXPECT_EQ(modem.Type("xAT\r"), noCarrierLine + okLine);
    EXPECT_EQ(modem.Wait(5000), "");
}

TEST(DataMode, EchoesEveryByteAndEscapesWithGuardTimes) {
    CTestModem modem = Connected();
    std::string every;
    for (int byte = 0; byte < 256; ++byte)
        every += static_cast<char>(byte);
    EXPECT_EQ(modem.Type(every), every);
    EXPECT_EQ(modem.Type("+++"), "+++"); // too early
    EXPECT_EQ(modem.Wait(5000), "");
    EXPECT_EQ(modem.Type("+++x"), "+++x"); // no silence after it
    EXPECT_EQ(modem.Wait(5000), "");
    EXPECT_EQ(modem.Type("++++"), "++++");
    EXPECT_EQ(modem.Wait(5000), "");
    modem.Type("+");
    modem.Wait(1000);
    modem.Type("++"); // too slow
    EXPECT_EQ(modem.Wait(5000), "");

    EXPECT_EQ(modem.TypeBytewise("+++"), "+++");
    EXPECT_EQ(modem.Wait(999), "");
    EXPECT_EQ(modem.Wait(1), okLine);
    EXPECT_EQ(modem.Type("AT+CLCC\r"), "\r\n+CLCC: 1,0,0,1,0\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("ATD1\r"), "\r\nERROR\r\n");
    EXPECT_EQ(modem.Type("ATO\rAT\r"), connectLine + "AT\r");
    modem.Wait(1000);
    modem.Type("+++");
    EXPECT_EQ(modem.Wait(1000), okLine);
    EXPECT_EQ(modem.Type("ATH\rATO\r"), okLine + noCarrierLine);
}

TEST(DataMode, EscapeRegisters) {
    CTestModem modem(QuietProfile());
    modem.Type("ATS12=0D1\r");
    modem.Wait(1000);
    EXPECT_EQ(modem.Type("ab+++ATO\r12++"), "ab+++" + okLine + connectLine + "12++");
    EXPECT_EQ(modem.Type("+ATH\r"), "+" + okLine + okLine);
    modem.Type("ATS2=64D1\r");
    modem.Wait(1000);
    EXPECT_EQ(modem.Type("+++@@@"), "+++@@@" + okLine);
    EXPECT_EQ(modem.Type("ATS2=128O\r@@@+++"), connectLine + "@@@+++"); // switched off
}

TEST(DataMode, FarEndHangsUp) {
    SSimulatorProfile profile = QuietProfile();
    profile.hangUpAfter = 3000;
    CTestModem modem = Connected(profile);
    EXPECT_EQ(modem.Wait(2999), "");
    EXPECT_EQ(modem.Wait(1), noCarrierLine);
    EXPECT_EQ(modem.Type("AT\r"), okLine);
    modem.Type("ATS12=0D1\r");
    modem.Wait(1000);
    EXPECT_EQ(modem.Type("+++AT+SIM=HANGUP\r"), "+++" + okLine + okLine + noCarrierLine);
}

TEST(DataMode, ClosingTheDeviceActsAsTheDtrSettingSays) {
    const std::string afterwards[] = {connectLine, connectLine, noCarrierLine, noCarrierLine};
    for (std::size_t action = 0; action < 4; ++action) {
        CTestModem modem(QuietProfile());
        modem.Type("AT&D" + std::to_string(action) + "S12=0S7=9D1\r");
        modem.Wait(1000);
        modem.Modem().SetOpen(false, modem.Now());
        modem.Modem().SetOpen(true, modem.Now());
        if (action == 0) {
            EXPECT_EQ(modem.Type("x+++"), "x+++" + okLine);
        }
        EXPECT_EQ(modem.Type("ATO\r"), afterwards[action]) << action;
        if (action >= 2) {
            EXPECT_EQ(modem.Type("ATS7?\r").substr(2, 3), action == 3 ? "050" : "009");
        }
    }
}

TEST(Ringing, IsAnsweredRejectedAndGivenUp) {
    SSimulatorProfile profile = QuietProfile();
    profile.ringPeriod = 2000;
    profile.ringCount = 4;
    CTestModem modem(profile);
    EXPECT_EQ(modem.Type("ATA\r"), noCarrierLine);
    EXPECT_EQ(modem.Wait(4000), ringLine + ringLine);
    EXPECT_EQ(modem.Type("ATS1?\r"), "\r\n002\r\n" + okLine);
    EXPECT_EQ(modem.Type("ATHA\r"), noCarrierLine);
    EXPECT_EQ(modem.Wait(2000), ringLine);
    EXPECT_EQ(modem.Type("ATA\r"), connectLine);
    EXPECT_EQ(modem.Type("data"), "data");
    EXPECT_EQ(modem.Wait(10000), "");
    modem.Type("+++");
    EXPECT_EQ(modem.Wait(1000), okLine);
    EXPECT_EQ(modem.Type("ATH+CLIP=1\r"), okLine);
    EXPECT_EQ(modem.Wait(60000), ringLine + "\r\n+CLIP: \"+15550100\",145\r\n");
    EXPECT_EQ(modem.Type("ATA\r"), noCarrierLine);
}

TEST(Ringing, AutomaticAnswer) {
    SSimulatorProfile profile = QuietProfile();
    profile.ringPeriod = 2000;
    profile.ringCount = 2;
    CTestModem modem(profile);
    modem.Type("ATS0=2V0\r");
    EXPECT_EQ(modem.Wait(5000), "2\r2\r1\r");
    EXPECT_EQ(modem.Wait(60000), ""); // no more rings, and their end is not the call's
    EXPECT_EQ(modem.Type("AT\r"), "AT\r");
}

TEST(Unsolicited, RegistrationIsToldWhenAskedFor) {
    SSimulatorProfile profile = QuietProfile();
    profile.registrationPeriod = 5000;
    CTestModem modem(profile);
    EXPECT_EQ(modem.Wait(10000), "");
    modem.Type("AT+CREG=1\r");
    EXPECT_EQ(modem.Wait(10000), "\r\n+CREG: 2\r\n\r\n+CREG: 1\r\n");
    EXPECT_EQ(modem.Type("AT+SIM=REGISTRATION,3\r"), okLine + "\r\n+CREG: 3\r\n");
    modem.Modem().SetOpen(false, modem.Now());
    EXPECT_FALSE(modem.Modem().NextDeadline()); // nobody is there: nothing to wake up for
}

} // namespace
} // namespace modemsim
