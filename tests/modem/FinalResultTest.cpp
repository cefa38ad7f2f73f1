#include "modem/FinalResult.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <random>
#include <string>
#include <vector>

namespace {

using Verdict = CFinalResult::Verdict;

// Feeds bytes in reads of at most the given size; stops at a verdict. Leaves the response in place.
Verdict Feed(std::string_view bytes, std::size_t readSize, std::string& response) {
    CFinalResult finalResult(response);
    for (std::size_t start = 0; start < bytes.size(); start += readSize) {
        const Verdict verdict = finalResult.Append(bytes.substr(start, readSize));
        if (verdict != Verdict::None)
            return verdict;
    }
    return Verdict::None;
}

struct Answer {
    std::string_view bytes;
    Verdict verdict;
    std::string_view response;
};

constexpr std::array kAnswers = {
    Answer{"AT\r\r\nOK\r\n", Verdict::Ok, "AT"},
    Answer{"\r\n+CGMI: X\r\n\r\nOK\r\n", Verdict::Ok, "+CGMI: X"},
    Answer{"\r\nOK\r\n", Verdict::Ok, ""},
    Answer{" \t\v\f\r\na  b\r\n\r\nOK\r\n", Verdict::Ok, "a  b"},
    Answer{"\r\nOK\r\r\nOK\r\n", Verdict::Ok, "OK"},
    Answer{"\r\nERRO\r\nERROR\r\n", Verdict::Error, ""},
    Answer{"AT+X\r\r\nERROR\r\n", Verdict::Error, ""},
    Answer{"\r\n+CME ERROR: 10\r\n", Verdict::CmeError, "10"},
    Answer{"AT+CPIN?\r\r\n+CME ERROR: SIM busy \r\n", Verdict::CmeError, "SIM busy"},
    Answer{"\r\n+CMS ERROR: 500\r\n", Verdict::CmsError, "500"},
    Answer{"\r\n+CME ERROR:\r\n", Verdict::CmeError, ""},
    Answer{"\r\n\r\r\n+CME ERROR: 3\r\n", Verdict::CmeError, "3"},
    // Not final results: another case, no line end before or behind, half markers.
    Answer{"OK\r\n", Verdict::None, "OK\r\n"},
    Answer{"\r\nok\r\n", Verdict::None, "\r\nok\r\n"},
    Answer{"\r\nOK\r", Verdict::None, "\r\nOK\r"},
    Answer{"\nOK\n", Verdict::None, "\nOK\n"},
    Answer{"\r\nNO CARRIER\r\n", Verdict::None, "\r\nNO CARRIER\r\n"},
    Answer{"+CME ERROR: 1\r\n", Verdict::None, "+CME ERROR: 1\r\n"},
    Answer{"\r\n+CME ERROR: 1\n", Verdict::None, " 1\n"},
    Answer{"\r\n+CMS ERROR: 12", Verdict::None, " 12"},
    Answer{"", Verdict::None, ""},
};

TEST(FinalResult, KnowsAnswersHoweverTheyAreSplit) {
    for (const Answer& answer : kAnswers)
        for (const std::size_t readSize : {1, 2, 3, 5, 7, 13, 1023}) {
            std::string response = "left over";
            EXPECT_EQ(Feed(answer.bytes, readSize, response), answer.verdict)
                << answer.bytes << " in reads of " << readSize;
            EXPECT_EQ(response, answer.response) << answer.bytes << " in reads of " << readSize;
        }
}

// Where several markers stand in one read, the order of the tests decides, not the order of
// arrival.
TEST(FinalResult, TestsInItsOrderWithinARead) {
    constexpr std::array wholes = {
        Answer{"\r\nERROR\r\n\r\nOK\r\n", Verdict::Ok, "ERROR"},
        Answer{"\r\n+CME ERROR: 7\r\n\r\nOK\r\n", Verdict::Ok, "+CME ERROR: 7"},
        Answer{"\r\n+CME ERROR: 7\r\n\r\nERROR\r\n", Verdict::Error, ""},
        Answer{"\r\n+CMS ERROR: 5\r\n+CME ERROR: 7\r\n", Verdict::CmeError, "7"},
        Answer{"\r\n+CME ERROR: 7\r\n+CMS ERROR: 5\r\n", Verdict::CmeError, "5"},
        Answer{"\r\nOK\r\n\r\nOK\r\n", Verdict::Ok, ""},
        Answer{"a\r\n+CME ERROR: 1\r\n+CME ERROR: 2\r\n", Verdict::CmeError, "1\r\n+CME ERROR: 2"},
    };
    for (const Answer& answer : wholes) {
        std::string response;
        EXPECT_EQ(Feed(answer.bytes, 1023, response), answer.verdict) << answer.bytes;
        EXPECT_EQ(response, answer.response) << answer.bytes;
    }
    std::string response;
    EXPECT_EQ(Feed("\r\nERROR\r\n\r\nOK\r\n", 1, response), Verdict::Error);
    EXPECT_EQ(Feed("\r\n+CME ERROR: 7\r\n\r\nOK\r\n", 1, response), Verdict::CmeError);
}

TEST(FinalResult, NulEndsWhatAReadContributes) {
    using std::string_view_literals::operator""sv;
    std::string response;
    CFinalResult finalResult(response);
    EXPECT_EQ(finalResult.Append("ab\0\r\nOK\r\n"sv), Verdict::None);
    EXPECT_EQ(finalResult.Append("\0\r\nOK\r\n"sv), Verdict::None);
    EXPECT_EQ(response, "ab");
    EXPECT_EQ(finalResult.Append("c\r\nO"sv), Verdict::None);
    EXPECT_EQ(finalResult.Append("K\r\n\0ERROR"sv), Verdict::Ok);
    EXPECT_EQ(response, "abc");
}

// The rules, carried out on the whole text after every read.
class CPlainSearch {
  public:
    Verdict Append(const std::string& bytes) {
        m_text += bytes;
        const std::size_t ok = m_text.find("\r\nOK\r\n");
        if (ok != std::string::npos) {
            m_text.resize(ok);
            return Trimmed(Verdict::Ok);
        }
        if (m_text.find("\r\nERROR\r\n") != std::string::npos) {
            m_text.clear();
            return Verdict::Error;
        }
        Cut("\r\n+CME ERROR:", m_cme);
        Cut("\r\n+CMS ERROR:", m_cms);
        if ((m_cme || m_cms) && m_text.find("\r\n") != std::string::npos)
            return Trimmed(m_cme ? Verdict::CmeError : Verdict::CmsError);
        return Verdict::None;
    }
    std::string m_text;

  private:
    Verdict Trimmed(Verdict verdict) {
        while (!m_text.empty() && std::isspace(static_cast<unsigned char>(m_text.back())))
            m_text.pop_back();
        while (!m_text.empty() && std::isspace(static_cast<unsigned char>(m_text.front())))
            m_text.erase(0, 1);
        return verdict;
    }
    void Cut(const std::string& marker, bool& seen) {
        const std::size_t position = seen ? std::string::npos : m_text.find(marker);
        if (position == std::string::npos)
            return;
        m_text.erase(0, position + marker.size());
        seen = true;
    }
    bool m_cme = false;
    bool m_cms = false;
};

TEST(FinalResult, JudgesAsASearchOfTheWholeTextWould) {
    const std::vector<std::string> pieces = {"\r",
                                             "\n",
                                             "\r\n",
                                             "OK",
                                             "ERROR",
                                             "+CME",
                                             "+CMS",
                                             " ERROR:",
                                             "\r\nOK\r",
                                             "\r\nERR",
                                             "OR\r\n",
                                             "\r\n+CME ERROR:",
                                             "\r\n+CMS ERROR:",
                                             " 10",
                                             "x",
                                             "AT+CSQ"};
    std::mt19937 random(20260);
    for (int round = 0; round < 20000; ++round) {
        std::string response;
        CFinalResult finalResult(response);
        CPlainSearch plain;
        Verdict verdict = Verdict::None;
        for (int read = 0; read < 12 && verdict == Verdict::None; ++read) {
            std::string bytes;
            for (std::size_t count = random() % 4; count > 0; --count)
                bytes += pieces[random() % pieces.size()];
            bytes.resize(bytes.size() - random() % (bytes.size() / 3 + 1));
            verdict = finalResult.Append(bytes);
            ASSERT_EQ(verdict, plain.Append(bytes)) << "round " << round;
            ASSERT_EQ(response, plain.m_text) << "round " << round;
        }
    }
}

TEST(FinalResult, KeepsABoundedPartOfAnEndlessAnswer) {
    const std::string noise(1023, 'x');
    struct Ending {
        std::string_view bytes;
        Verdict verdict;
        std::size_t length;
    };
    constexpr std::array endings = {
        Ending{"\r\nOK\r\n", Verdict::Ok, CFinalResult::MAX_RESPONSE},
        Ending{"\r\nERROR\r\n", Verdict::Error, 0},
        Ending{"\r\n+CMS ERROR: 42\r\n", Verdict::CmsError, 2},
        Ending{"", Verdict::None, CFinalResult::MAX_RESPONSE},
    };
    for (const Ending& ending : endings) {
        std::string response;
        CFinalResult finalResult(response);
        for (std::size_t sent = 0; sent < 3 * CFinalResult::MAX_RESPONSE; sent += noise.size())
            ASSERT_EQ(finalResult.Append(noise), Verdict::None);
        Verdict verdict = Verdict::None;
        for (const char byte : ending.bytes)
            verdict = finalResult.Append({&byte, 1});
        EXPECT_EQ(verdict, ending.verdict) << ending.bytes;
        EXPECT_EQ(response.size(), ending.length) << ending.bytes;
    }
}

// The text in front of a marker is right when the marker stands across the bound, too.
TEST(FinalResult, CutsAtTheBound) {
    for (const std::size_t before : {CFinalResult::MAX_RESPONSE - 3, CFinalResult::MAX_RESPONSE}) {
        const std::string text = std::string(before, 'y') + "\r\nOK\r\n";
        std::string response;
        EXPECT_EQ(Feed(text, 1000, response), Verdict::Ok);
        EXPECT_EQ(response, std::string(before, 'y'));
    }
}

} // namespace
