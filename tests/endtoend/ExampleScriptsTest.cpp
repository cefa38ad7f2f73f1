// The scripts of examples/, each run against the simulated modem: what the modem is told and what
// the user is told are what the script is for.
#include "tests/endtoend/SessionTest.h"

#include <algorithm>
#include <filesystem>

namespace {

struct Example {
    const char* script;
    std::vector<std::string> modem;      // the simulator's options
    std::vector<std::string_view> sent;  // to the modem, in this order
    std::vector<std::string_view> boxes; // shown to the user, in this order
};

const std::vector<Example> kExamples = {
    {"identify",
     {},
     {"AT+CGMI\r", "AT+CGMM\r", "AT+CGSN\r"},
     {"Manufacturer: Wirelet\nModel: Simulated GSM modem\nSerial number: 001010123456782\n"}},
    {"signal",
     {},
     {"AT+CSQ\r", "AT+CSQ\r", "AT+CSQ\r", "AT+CSQ\r", "AT+CSQ\r"},
     {"\n 1: 18 of 31, -77 dBm\n", "\n 5: 18 of 31, -77 dBm\n"}},
    {"sms",
     {},
     {"AT+CMGF=1\r", "AT+CMGS=\"+15550100\"\r", "Sent by a script.\x1A"},
     {"The message was sent to +15550100\n"}},
    // Without a SIM the modem refuses the command that would give the prompt.
    {"sms", {"--no-sim"}, {"AT+CMGS=", "\x1B"}, {"There is no prompt."}},
    {"answer",
     {"--ring=0.5"},
     {"ATA\r", "Hello. Type BYE", "Goodbye.\r\n", "+++", "ATH\r"},
     {"The caller said BYE.\n"}},
    {"redial",
     {"--dial-time=100"},
     {"ATD5552\r", "ATD5551\r", "+++", "ATH\r"},
     {"Connected to 5551 at 115200 baud in round 1.\n"}},
    {"check",
     {},
     {"AT+CPIN?\r", "AT+CBC\r"},
     {"Check: 5 of 6 passed\n", "passed     AT+CPIN?\n", "refused    AT+CBC\n"}},
};

void ExpectInOrder(std::string_view text, const std::vector<std::string_view>& pieces) {
    std::size_t position = 0;
    for (const std::string_view piece : pieces) {
        position = text.find(piece, position);
        ASSERT_NE(position, std::string_view::npos)
            << "no " << ::testing::PrintToString(std::string(piece)) << " in "
            << ::testing::PrintToString(std::string(text));
        position += piece.size();
    }
}

} // namespace

class CExampleScriptsTest : public CSessionTest, public ::testing::WithParamInterface<Example> {};

TEST_P(CExampleScriptsTest, DoesWhatItSays) {
    ConnectModem(GetParam().modem);
    const Outcome outcome = Run({m_device.GetPath(), "-S:" + std::string(WIRELET_EXAMPLES) + '/' +
                                                         GetParam().script + ".scr"});
    EXPECT_EQ(outcome.exit, 0);
    ExpectInOrder(m_device.GetReceived(), GetParam().sent);
    ExpectInOrder(outcome.error, GetParam().boxes);
}

INSTANTIATE_TEST_SUITE_P(Scripts, CExampleScriptsTest, ::testing::ValuesIn(kExamples),
                         [](const auto& example) {
                             return std::to_string(example.index) + example.param.script;
                         });

TEST(ExampleScriptsTest, EachHasItsRun) {
    for (const auto& entry : std::filesystem::directory_iterator(WIRELET_EXAMPLES)) {
        if (entry.path().extension() != ".scr")
            continue;
        EXPECT_TRUE(std::ranges::any_of(kExamples, [&](const Example& example) {
            return entry.path().stem() == example.script;
        })) << entry.path();
    }
}
