// Command lines and their answers, typed at once and byte by byte.
#include "tests/simulator/TestModem.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

struct SDialogue {
    const char* typed;
    const char* answer;
};

// Each dialogue starts with a fresh modem, echo off.
void Check(const SDialogue& dialogue, const SSimulatorProfile& profile = QuietProfile()) {
    SCOPED_TRACE(dialogue.typed);
    EXPECT_EQ(CTestModem(profile).Type(dialogue.typed), dialogue.answer);
    EXPECT_EQ(CTestModem(profile).TypeBytewise(dialogue.typed), dialogue.answer);
}

TEST(CommandAnswers, LineEditing) {
    constexpr SDialogue dialogues[] = {
        {"AT\r", "\r\nOK\r\n"},
        {"at\r\n", "\r\nOK\r\n"},
        {"aT e0 V1 q0 + c s q\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
        {"\r\n \r", ""},
        {"hello\r", ""},
        {"noise\xFF\x01"
         "AT\r",
         "\r\nOK\r\n"},
        {"AT+CSX\bQ\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
        {"AX\bT\r", ""}, // what stood before AT is not remembered
        {"ATX\b\b\b\b\b\bAT+GMI\x7FI\r", "\r\nWirelet\r\n\r\nOK\r\n"},
        {"AT+GMI\rA/", "\r\nWirelet\r\n\r\nOK\r\n\r\nWirelet\r\n\r\nOK\r\n"},
        {"A/", "\r\nOK\r\n"},
        {"dada/A/\r", ""},
        {"ATS3=33\rAT!ATS3?!", "!\nOK!\n!\nOK!\n!\n033!\n!\nOK!\n"},
        {"AT+CS\n\x01\x02Q\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);
}

TEST(CommandAnswers, EchoShowsWhatIsTyped) {
    CTestModem modem;
    EXPECT_EQ(modem.TypeBytewise("at\r\n"), "at\r\r\nOK\r\n");
    EXPECT_EQ(modem.Type("ATX\b\b\b\bA"), "ATX\b \b\b \b\b \bA");
    EXPECT_EQ(modem.Type("TE0\r"), "TE0\r\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT\r"), okLine);
    EXPECT_EQ(modem.Type("ATZ\rAT\r"), "\r\nOK\r\nAT\r\r\nOK\r\n");
}

TEST(CommandAnswers, FormsOfResults) {
    constexpr SDialogue dialogues[] = {
        {"ATV0\r", "0\r"},
        {"ATV0+CSQ\r", "+CSQ: 18,99\r\n0\r"},
        {"ATV0\rAT+CSQ\r", "0\r+CSQ: 18,99\r\n0\r"},
        {"ATV0\rATB\rATO\r", "0\r4\r3\r"},
        {"ATQ1\rAT+CSQ\rATY\r", "\r\n+CSQ: 18,99\r\n"},
        {"ATQ1V0\rATQ\r", "0\r"},
        {"ATV0+CMEE=1;+NONE\r", "+CME ERROR: 4\r\n"},
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);
}

TEST(CommandAnswers, SeveralCommandsStopAtTheFirstFailure) {
    constexpr SDialogue dialogues[] = {
        {"ATE0V1+CSQ;+CREG?\r", "\r\n+CSQ: 18,99\r\n\r\n+CREG: 0,1\r\n\r\nOK\r\n"},
        {"ATS0=3S0?;S0=7\rATS0?\r", "\r\n003\r\n\r\nOK\r\n\r\n007\r\n\r\nOK\r\n"},
        {"ATS0=3E9S0=5\rATS0?\r", "\r\nERROR\r\n\r\n003\r\n\r\nOK\r\n"},
        {"AT+CSQ;+NONE;+GMI\r", "\r\n+CSQ: 18,99\r\n\r\nERROR\r\n"},
        {"AT+CREG=1+CSQ\r", "\r\nERROR\r\n"},
        {"AT+CSQ=?;+CSQE0\r", "\r\n+CSQ: (0-31,99),(99)\r\n\r\nERROR\r\n"},
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);
}

TEST(CommandAnswers, ErrorsByLevel) {
    constexpr SDialogue dialogues[] = {
        {"AT+CMEE=1\rAT+NONE\rATW\r", "\r\nOK\r\n\r\n+CME ERROR: 4\r\n\r\nERROR\r\n"},
        {"AT+CMEE=2;+CPIN=\"0000\"\r", "\r\n+CME ERROR: operation not allowed\r\n"},
        {"AT+CMEE=1;+CREG=3\r", "\r\n+CME ERROR: 50\r\n"},
        {"AT+CMGR=1\r", "\r\nERROR\r\n"},
        {"AT+CMEE=1;+CMGR=1\r", "\r\n+CMS ERROR: 321\r\n"},
        {"AT+CMEE=2;+CMGR=51\r", "\r\n+CMS ERROR: invalid memory index\r\n"},
        {"AT+CMEE=3\rAT+CMEE?\r", "\r\nERROR\r\n\r\n+CMEE: 0\r\n\r\nOK\r\n"},
        {"AT+CMEE=1;+CLIP=\"1\r", "\r\nERROR\r\n"}, // a quote left open is no command at all
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);

    SSimulatorProfile profile = QuietProfile();
    profile.sim = false;
    Check({"AT+CMEE=1;+CPIN?\r", "\r\n+CME ERROR: 10\r\n"}, profile);
    Check({"AT+CMEE=1;+CMGL\r", "\r\n+CMS ERROR: 310\r\n"}, profile);
    Check({"AT+CREG?;+COPS?\r", "\r\n+CREG: 0,0\r\n\r\n+COPS: 0\r\n\r\nOK\r\n"}, profile);
}

TEST(CommandAnswers, IdentityNetworkAndClock) {
    constexpr SDialogue dialogues[] = {
        {"ATI\r", "\r\nManufacturer: Wirelet\r\nModel: Simulated GSM modem\r\nRevision: 9.9\r\n"
                  "\r\nOK\r\n"},
        {"ATI3I4\r", "\r\nRevision: 9.9\r\n\r\nOK\r\n"},
        {"ATI10\r", "\r\nERROR\r\n"},
        {"AT+CGMI;+CGMM;+GMR\r", "\r\nWirelet\r\n\r\nSimulated GSM modem\r\n\r\nRevision: 9.9\r\n"
                                 "\r\nOK\r\n"},
        {"AT+CGSN;+CIMI;+CGMI=?\r", "\r\n001010123456782\r\n\r\n001010123456789\r\n\r\nOK\r\n"},
        {"AT+CREG=2;+CREG?\r", "\r\n+CREG: 2,1,\"00C3\",\"0000A1B2\"\r\n\r\nOK\r\n"},
        {"AT+CPIN?;+COPS?\r",
         "\r\n+CPIN: READY\r\n\r\n+COPS: 0,0,\"Simulated Network\"\r\n\r\nOK\r\n"},
        {"AT+CCLK?\r", "\r\n+CCLK: \"24/05/31,12:04:06+00\"\r\n\r\nOK\r\n"},
        {"AT+CCLK=\"24/02/29,23:59:59+04\";+CCLK?\r",
         "\r\n+CCLK: \"24/02/29,22:59:59+00\"\r\n\r\nOK\r\n"},
        {"AT+CCLK=\"23/02/29,00:00:00+00\"\r", "\r\nERROR\r\n"},
        {"AT+CCLK=\"24/02/29 00:00:00+00\"\r", "\r\nERROR\r\n"},
        {"AT+CMGF=?;+CMGF=1;+CMGF?;&F;+CMGF?\r",
         "\r\n+CMGF: (0-1)\r\n\r\n+CMGF: 1\r\n\r\n+CMGF: 0\r\n\r\nOK\r\n"},
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);
}

TEST(CommandAnswers, RegistersAreBounded) {
    constexpr SDialogue dialogues[] = {
        {"ATS12?\r", "\r\n050\r\n\r\nOK\r\n"},
        {"ATS0=255S0?\r", "\r\n255\r\n\r\nOK\r\n"},
        {"ATS0=256\r", "\r\nERROR\r\n"},
        {"ATS0=\r", "\r\nERROR\r\n"},
        {"ATS32?\r", "\r\nERROR\r\n"},
        {"ATS99999999999999999999=1\r", "\r\nERROR\r\n"},
        {"ATS1=1\r", "\r\nERROR\r\n"},
        {"ATS5=128\r", "\r\nERROR\r\n"},
        {"ATS\r", "\r\nERROR\r\n"},
    };
    for (const SDialogue& dialogue : dialogues)
        Check(dialogue);
}

} // namespace
} // namespace modemsim
