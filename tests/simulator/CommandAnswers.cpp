// Command lines and their answers, typed at once and byte by byte.
#include "tests/simulator/TestModem.h"

using namespace modemsim;

TEST(CommandAnswers, EachDialogueFromAFreshModemWithoutEcho) {
    constexpr struct {
        const char* typed;
        const char* answer;
        bool sim = true;
    } dialogues[] = {
        // Line editing.
        {"at\r\n", "\r\nOK\r\n"},
        {"aT e0 V1 q0 + c s q\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
        {"\r\n \r", ""},
        {"hello\r", ""},
        {"noise\xFF\001AT\r", "\r\nOK\r\n"},
        {"AT+CSX\bQ\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
        {"AX\bT\r", ""}, // what stood before AT is not remembered
        {"ATX\b\b\b\b\b\bAT+GMI\x7FI\r", "\r\nWirelet\r\n\r\nOK\r\n"},
        {"AT+GMI\rA/", "\r\nWirelet\r\n\r\nOK\r\n\r\nWirelet\r\n\r\nOK\r\n"},
        {"A/", "\r\nOK\r\n"},
        {"dada/A/\r", ""},
        {"ATS3=33\rAT!ATS3?!", "!\nOK!\n!\nOK!\n!\n033!\n!\nOK!\n"},
        {"AT+CS\n\x01\x02Q\r", "\r\n+CSQ: 18,99\r\n\r\nOK\r\n"},
        // Forms of results.
        {"ATV0\rAT+CSQ\r", "0\r+CSQ: 18,99\r\n0\r"},
        {"ATV0\rATB\rATO\r", "0\r4\r3\r"},
        {"ATQ1\rAT+CSQ\rATY\r", "\r\n+CSQ: 18,99\r\n"},
        {"ATQ1V0\rATQ\r", "0\r"},
        {"ATV0+CMEE=1;+NONE\r", "+CME ERROR: 4\r\n"},
        // Several commands stop at the first failure.
        {"ATE0V1+CSQ;+CREG?\r", "\r\n+CSQ: 18,99\r\n\r\n+CREG: 0,1\r\n\r\nOK\r\n"},
        {"ATS0=3E9S0=5\rATS0?\r", "\r\nERROR\r\n\r\n003\r\n\r\nOK\r\n"},
        {"AT+CSQ;+NONE;+GMI\r", "\r\n+CSQ: 18,99\r\n\r\nERROR\r\n"},
        // Errors by level.
        {"AT+CMEE=1\rAT+NONE\rATW\r", "\r\nOK\r\n\r\n+CME ERROR: 4\r\n\r\nERROR\r\n"},
        {"AT+CMEE=1;+CREG=3\r", "\r\n+CME ERROR: 50\r\n"},
        {"AT+CMEE=1;+CMGR=1\r", "\r\n+CMS ERROR: 321\r\n"},
        {"AT+CMEE=2;+CMGR=51\r", "\r\n+CMS ERROR: invalid memory index\r\n"},
        {"AT+CMEE=1;+CLIP=\"1\r", "\r\nERROR\r\n"}, // a quote left open is no command at all
        {"AT+CMEE=1;+CPIN?\r", "\r\n+CME ERROR: 10\r\n", false},
        {"AT+CMEE=1;+CMGL\r", "\r\n+CMS ERROR: 310\r\n", false},
        {"AT+CREG?;+COPS?\r", "\r\n+CREG: 0,0\r\n\r\n+COPS: 0\r\n\r\nOK\r\n", false},
        // The clock.
        {"AT+CCLK=\"24/02/29,23:59:59+04\";+CCLK?\r",
         "\r\n+CCLK: \"24/02/29,22:59:59+00\"\r\n\r\nOK\r\n"},
    };
    for (const auto& dialogue : dialogues) {
        SSimulatorProfile profile = QuietProfile();
        profile.sim = dialogue.sim;
        EXPECT_EQ(CTestModem(profile).Type(dialogue.typed), dialogue.answer) << dialogue.typed;
        EXPECT_EQ(CTestModem(profile).TypeBytewise(dialogue.typed), dialogue.answer)
            << dialogue.typed;
    }
}

TEST(CommandAnswers, EchoShowsWhatIsTyped) {
    CTestModem modem;
    EXPECT_EQ(modem.TypeBytewise("at\r\n"), "at\r\r\nOK\r\n");
    EXPECT_EQ(modem.Type("ATX\b\b\b\bA"), "ATX\b \b\b \b\b \bA");
    EXPECT_EQ(modem.Type("TE0\r"), "TE0\r\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT\r"), okLine);
    EXPECT_EQ(modem.Type("ATZ\rAT\r"), "\r\nOK\r\nAT\r\r\nOK\r\n");
}
