// The dialogues of dialogues.txt and calls.txt, and what does not go into a file of texts.
#include "tests/simulator/TestModem.h"
#include "tests/support/TempFolder.h"
#include "tests/support/Unescape.h"

#include <sstream>

using namespace modemsim;

namespace {

void Hold(const std::string& dialogue, std::size_t most) {
    std::optional<CTestModem> modem;
    std::string options = "--no-echo --messages 0", done, sent, expected;
    std::istringstream lines(dialogue + ". 0\n");
    for (std::string line; std::getline(lines, line);) {
        const std::string rest = Unescape(line.substr(2));
        if (line[0] == '$')
            options += ' ' + rest;
        if (line[0] == '<')
            expected += rest;
        if (line[0] != '>' && line[0] != '.' && line[0] != '/')
            continue;
        EXPECT_EQ(sent, expected) << "behind " << done << " of\n" << dialogue;
        if (!modem)
            modem.emplace(QuietProfile(options));
        expected.clear();
        done = line;
        if (line[0] == '.')
            sent = modem->Wait(std::stoll(rest));
        else if (line[0] == '/')
            sent = modem->Reopen();
        else
            sent = modem->Type(rest, most);
    }
}

} // namespace

TEST(Dialogues, GoAsTheFileSays) {
    std::istringstream lines(ReadWholeFile(DIALOGUES "/dialogues.txt") + '\n' +
                             ReadWholeFile(DIALOGUES "/calls.txt"));
    std::string dialogue;
    int count = 0;
    for (std::string line; std::getline(lines, line) || !dialogue.empty();) {
        if (lines && !line.empty()) {
            dialogue += line + '\n';
            continue;
        }
        Hold(dialogue, std::string::npos);
        Hold(dialogue, 1);
        dialogue.clear();
        ++count;
    }
    EXPECT_GT(count, 40);
}

TEST(Dialogues, NothingIsToBeDoneForNobody) {
    CTestModem modem(QuietProfile("--no-echo --ring 2 --ring-count 4"));
    modem.Type("ATS0=2V0\r");
    modem.Wait(60000);
    EXPECT_TRUE(modem.Modem().NextDeadline());
    modem.Modem().SetOpen(false, modem.Now());
    EXPECT_FALSE(modem.Modem().NextDeadline());
}

TEST(Dialogues, TheWholeAlphabetOfMessagesThereAndBack) {
    std::string text = "\n\r";
    for (char character = ' '; character < 0x7F; ++character)
        text += character == '`' ? '?' : character;
    for (const std::string number : {"+4670", "*100#", "1"}) {
        const auto decoded = DecodeSubmit(EncodeSubmit(number, text).hex);
        ASSERT_TRUE(decoded);
        EXPECT_EQ(decoded->number + decoded->text, number + text);
    }
}
