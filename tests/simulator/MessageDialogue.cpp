// Short messages: entering, cancelling, keeping, listing, and their PDU form.
#include "tests/simulator/TestModem.h"

#include <gtest/gtest.h>

namespace modemsim {
namespace {

TEST(MessageDialogue, TextIsEnteredSentAndListed) {
    CTestModem modem;
    modem.Type("AT+CMGF=1;+CMEE=1\r");
    EXPECT_EQ(modem.Type("AT+CMGS=\"+1555123\"\r"), "AT+CMGS=\"+1555123\"\r\r\n> ");
    EXPECT_EQ(modem.TypeBytewise("Hex\bllo\rAT\x1A"),
              "Hex\b \bllo\r\n> AT\r\n+CMGS: 1\r\n\r\nOK\r\n");
    modem.Type("ATE0\r");
    EXPECT_EQ(modem.Type("AT+CMGL=\"ALL\"\r"),
              "\r\n+CMGL: 1,\"STO SENT\",\"+1555123\",\r\nHello\r\nAT\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGL\r"), okLine);
    EXPECT_EQ(modem.Type("AT+CPMS?\r"),
              "\r\n+CPMS: \"SM\",1,50,\"SM\",1,50,\"SM\",1,50\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGD=1;+CMGD=1;+CMGR=1\r"), "\r\n+CMS ERROR: 321\r\n");
}

TEST(MessageDialogue, CancelAndRefusals) {
    CTestModem modem(QuietProfile());
    modem.Type("AT+CMGF=1;+CMEE=1\r");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\rnever\x1B"), "\r\n> \r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"no number\"\r"), "\r\n+CMS ERROR: 305\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS\r"), "\r\n+CMS ERROR: 303\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\r" + std::string(161, 'x') + "\x1A"),
              "\r\n> \r\n+CMS ERROR: 305\r\n");
    EXPECT_EQ(modem.Type("AT+CMGS=\"555\"\r" + std::string(160, 'x') + "\x1A"),
              "\r\n> \r\n+CMGS: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGF=0;+CMGS=0\r"), "\r\n+CMS ERROR: 304\r\n");
}

// "hellohello" to 46708251358 is the example that the standard's readers all know.
TEST(MessageDialogue, PduIsCheckedAndShown) {
    constexpr const char* submit = "0011000B916407281553F80000AA0AE8329BFD4697D9EC37";
    CTestModem modem(QuietProfile());
    modem.Type("AT+CMEE=1\r");
    EXPECT_EQ(modem.Type(std::string("AT+CMGS=23\r") + submit + "\x1A"),
              "\r\n> \r\n+CMGS: 1\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGL=4\r"),
              std::string("\r\n+CMGL: 1,3,,23\r\n") + submit + "\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGF=1;+CMGR=1\r"),
              "\r\n+CMGR: \"STO SENT\",\"+46708251358\",\r\nhellohello\r\n\r\nOK\r\n");
    modem.Type("AT+CMGF=0\r");
    const std::string wrong[] = {"AT+CMGS=22\r" + std::string(submit),
                                 "AT+CMGS=23\r" + std::string(submit).substr(2),
                                 "AT+CMGS=23\r" + std::string(submit) + "0",
                                 "AT+CMGS=1\r0001",
                                 "AT+CMGS=1\rFF01",
                                 "AT+CMGS=4\rnot hexa",
                                 "AT+CMGS=164\r"};
    for (const std::string& entry : wrong)
        EXPECT_EQ(modem.Type(entry + "\x1A"), "\r\n> \r\n+CMS ERROR: 304\r\n") << entry;
}

TEST(MessageDialogue, MessagesArriveOnceAndFillTheStore) {
    SSimulatorProfile profile = QuietProfile();
    profile.messagePeriod = 10000;
    CTestModem modem(profile);
    modem.Type("AT+CMGF=1\r");
    EXPECT_EQ(modem.Wait(20000), "\r\n+CMTI: \"SM\",1\r\n\r\n+CMTI: \"SM\",2\r\n");
    EXPECT_EQ(modem.Type("AT+CMGR=2\r"),
              "\r\n+CMGR: \"REC UNREAD\",\"+15550100\",,\"24/05/31,12:04:26+00\"\r\n"
              "Simulated message 2\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGF=0;+CMGL=0\r"),
              "\r\n+CMGL: 1,0,,34\r\n000408915155100000004250132140610013D374BBCE0ED3CB6450BB3C9F87"
              "CF65500C\r\n\r\nOK\r\n");
    modem.Type("AT+CNMI=2,0\r");
    EXPECT_EQ(modem.Wait(600000), "");
    EXPECT_EQ(modem.Type("AT+CPMS=\"SM\"\r"), "\r\n+CPMS: 50,50,50,50,50,50\r\n\r\nOK\r\n");
    EXPECT_EQ(modem.Type("AT+CMGF=1;+CMGL=\"REC READ\"\r").find("CMGL: 3"), std::string::npos);
    modem.Type("AT+CMGD=1,1\r");
    EXPECT_EQ(modem.Type("AT+CPMS=\"SM\"\r"), "\r\n+CPMS: 48,50,48,50,48,50\r\n\r\nOK\r\n");
}

TEST(Pdu, RoundTripOfTheWholeAlphabet) {
    std::string text = "\n\r";
    for (char character = ' '; character < 0x7F; ++character)
        if (character != '`')
            text += character;
    for (const std::string& number :
         {std::string("+4670"), std::string("*100#"), std::string("1")}) {
        const auto decoded = DecodeSubmit(EncodeSubmit(number, text).hex);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->number, number);
        EXPECT_EQ(decoded->text, text);
    }
    EXPECT_EQ(DecodeSubmit(EncodeSubmit("1", "\xE9`\x01").hex)->text, "???");
}

} // namespace
} // namespace modemsim
