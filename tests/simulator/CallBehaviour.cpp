// Dialling, data mode, escaping from it, and calls that come in. All times are the test's own.
#include "tests/simulator/TestModem.h"

using namespace modemsim;

namespace {

const std::string connectLine = "\r\nCONNECT\r\n";
const std::string noCarrierLine = "\r\nNO CARRIER\r\n";
const std::string ringLine = "\r\nRING\r\n";

// Types a command line that dials a number that answers.
void Connect(CTestModem& modem, const std::string& line) {
    EXPECT_EQ(modem.Type(line + "\r"), "");
    EXPECT_EQ(modem.Wait(1000), connectLine);
}

} // namespace

TEST(Dialling, ResultByNumber) {
    SSimulatorProfile profile = QuietProfile();
    profile.dialRules = {
        {"99", EResult::Busy}, {"9", EResult::Connect}, {"0", EResult::NoDialtone}};
    const struct {
        const char* typed;
        std::string answer;
    } cases[] = {
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
    for (const auto& one : cases) {
        CTestModem modem(profile);
        EXPECT_EQ(modem.Type(one.typed), "") << one.typed;
        EXPECT_EQ(modem.Wait(999), "") << one.typed;
        EXPECT_EQ(modem.Wait(1), one.answer) << one.typed;
    }
    EXPECT_EQ(CTestModem(profile).Type("ATD1;\r"), okLine);
    EXPECT_EQ(CTestModem(profile).Type("ATD1\rxAT\r"), noCarrierLine + okLine); // any key aborts
}

TEST(DataMode, EchoesEveryByteAndEscapesWithGuardTimes) {
    CTestModem modem(QuietProfile());
    Connect(modem, "ATDT 555-1");
    std::string every;
    for (int byte = 0; byte < 256; ++byte)
        every += static_cast<char>(byte);
    EXPECT_EQ(modem.Type(every), every);
    // Too early, no silence behind it, too many.
    for (const std::string typed : {"+++", "+++x", "++++"}) {
        EXPECT_EQ(modem.Type(typed), typed);
        EXPECT_EQ(modem.Wait(5000), "");
    }
    modem.Type("+");
    modem.Wait(1000);
    modem.Type("++"); // too slow
    EXPECT_EQ(modem.Wait(5000), "");

    EXPECT_EQ(modem.TypeBytewise("+++"), "+++");
    EXPECT_EQ(modem.Wait(999), "");
    EXPECT_EQ(modem.Wait(1), okLine);
    EXPECT_EQ(modem.Type("ATD1\r"), "\r\nERROR\r\n");
    EXPECT_EQ(modem.Type("ATO\rAT\r"), connectLine + "AT\r");
    modem.Wait(1000);
    modem.Type("+++");
    EXPECT_EQ(modem.Wait(1000), okLine);
    EXPECT_EQ(modem.Type("ATH\rATO\r"), okLine + noCarrierLine);

    Connect(modem, "ATS12=0D1"); // no guard time
    EXPECT_EQ(modem.Type("ab+++ATS2=64O\r12+++@@@"),
              "ab+++" + okLine + connectLine + "12+++@@@" + okLine);
    EXPECT_EQ(modem.Type("ATS2=128O\r@@@+++"), connectLine + "@@@+++"); // switched off
}

TEST(DataMode, EndsWithTheFarEndOrAsTheDtrSettingSays) {
    SSimulatorProfile profile = QuietProfile();
    profile.hangUpAfter = 3000;
    CTestModem ended(profile);
    Connect(ended, "ATD1");
    EXPECT_EQ(ended.Wait(2999), "");
    EXPECT_EQ(ended.Wait(1), noCarrierLine);
    EXPECT_EQ(ended.Type("AT\r"), okLine);

    const std::string afterwards[] = {connectLine, connectLine, noCarrierLine, noCarrierLine};
    for (std::size_t action = 0; action < 4; ++action) {
        CTestModem modem(QuietProfile());
        Connect(modem, "AT&D" + std::to_string(action) + "S12=0S7=9D1");
        modem.Modem().SetOpen(false, modem.Now());
        modem.Modem().SetOpen(true, modem.Now());
        if (action == 0) {
            EXPECT_EQ(modem.Type("x+++"), "x+++" + okLine);
        }
        EXPECT_EQ(modem.Type("ATO\r"), afterwards[action]) << action;
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

    CTestModem automatic(profile);
    automatic.Type("ATS0=2V0\r");
    EXPECT_EQ(automatic.Wait(60000), "2\r2\r1\r"); // no more rings, and their end is not the call's
    EXPECT_EQ(automatic.Type("AT\r"), "AT\r");
    automatic.Modem().SetOpen(false, automatic.Now());
    EXPECT_FALSE(automatic.Modem().NextDeadline()); // nobody is there: nothing to wake up for
}
