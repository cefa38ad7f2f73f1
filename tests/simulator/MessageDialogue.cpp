// Short messages: entering, cancelling, keeping, listing, and their PDU form.
#include "tests/simulator/TestModem.h"

using namespace modemsim;

namespace {

// "hellohello" to 46708251358 is the example that the standard's readers all know.
const std::string submit = "0011000B916407281553F80000AA0AE8329BFD4697D9EC37";

} // namespace

TEST(MessageDialogue, TextIsEnteredSentAndListed) {
    CTestModem modem;
    modem.Type("AT+CMGF=1;+CMEE=1\r");
    EXPECT_EQ(modem.Type("AT+CMGS=\"+1555123\"\r"), "AT+CMGS=\"+1555123\"\r\r\n> ");
    EXPECT_EQ(modem.TypeBytewise("Hex\bllo\rAT\x1A"),
              "Hex\b \bllo\r\n> AT\r\n+CMGS: 1\r\n\r\nOK\r\n");
    modem.Type("ATE0\r");
    EXPECT_EQ(modem.Type("AT+CMGL=\"ALL\"\r"),
              "\r\n+CMGL: 1,\"STO SENT\",\"+1555123\",\r\nHello\r\nAT\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGD=1;+CMGD=1;+CMGR=1\r"), "\r\n+CMS ERROR: 321\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\rnever\x1B"), "\r\n> \r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"no number\"\r"), "\r\n+CMS ERROR: 305\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\r" + std::string(161, 'x') + "\x1A"),
              "\r\n> \r\n+CMS ERROR: 305\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\r" + std::string(160, 'x') + "\x1A"),
              "\r\n> \r\n+CMGS: 2\r\n\r\nOK\r\n");
}

TEST(MessageDialogue, PduIsCheckedAndShown) {
    CTestModem modem(QuietProfile());
    EXPECT_EQ(modem.Type("AT+CMEE=1;+CMGS=23\r" + submit + "\x1A"),
              "\r\n> \r\n+CMGS: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGL=4\r"), "\r\n+CMGL: 1,3,,23\r\n" + submit + "\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGF=1;+CMGR=1\r"),
              "\r\n+CMGR: \"STO SENT\",\"+46708251358\",\r\nhellohello\r\n\r\nOK\r\n");
    modem.Type("AT+CMGF=0\r");
    for (const std::string& entry :
         {"22\r" + submit, "23\r" + submit.substr(2), "23\r" + submit + "0", std::string("1\r0001"),
          std::string("1\rFF01"), std::string("4\rnot hexa"), std::string("164\r")})
        EXPECT_EQ(modem.Type("AT+CMGS=" + entry + "\x1A"), "\r\n> \r\n+CMS ERROR: 304\r\n")
            << entry;
    // The whole alphabet there and back.
    std::string text = "\n\r";
    for (char character = ' '; character < 0x7F; ++character)
        text += character == '`' ? '?' : character;
    for (const std::string number : {"+4670", "*100#", "1"}) {
        const auto decoded = DecodeSubmit(EncodeSubmit(number, text).hex);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->number + decoded->text, number + text);
    }
}
