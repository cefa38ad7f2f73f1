#include "modem/FinalResult.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using Verdict = CFinalResult::Verdict;

struct Answer {
    std::string_view bytes;
    Verdict verdict;
    std::string_view response;
};

// Feeds an answer in reads of at most the given size, up to the verdict.
void Check(const Answer& answer, std::size_t readSize) {
    std::string response = "left over";
    CFinalResult finalResult(response);
    Verdict verdict = Verdict::None;
    for (std::string_view left = answer.bytes; !left.empty() && verdict == Verdict::None;) {
        verdict = finalResult.Append(left.substr(0, readSize));
        left.remove_prefix(std::min(readSize, left.size()));
    }
    EXPECT_EQ(verdict, answer.verdict) << answer.bytes << " in reads of " << readSize;
    EXPECT_TRUE(response == answer.response) << response << " of " << answer.bytes;
}

TEST(FinalResult, KnowsAnswersHoweverTheyAreSplit) {
    const Answer answers[] = {
        {"AT\r\r\nOK\r\n", Verdict::Ok, "AT"},
        {"\r\n+CGMI: X\r\n\r\nOK\r\n", Verdict::Ok, "+CGMI: X"},
        {" \t\v\f\r\na  b\r\n\r\nOK\r\n", Verdict::Ok, "a  b"},
        {"\r\nOK\r\n", Verdict::Ok, ""},
        {"AT\r\nERRO\r\nERROR\r\n", Verdict::Error, ""},
        {"\r\n+CME ERROR: 10\r\n", Verdict::CmeError, "10"},
        {"AT+CPIN?\r\r\n+CME ERROR: SIM busy \r\n", Verdict::CmeError, "SIM busy"},
        {"\r\n\r\r\n+CME ERROR:\r\n", Verdict::CmeError, ""},
        // Not final results: no line end before or behind, half markers.
        {"OK\r\n", Verdict::None, "OK\r\n"},
        {"\r\nOK\r", Verdict::None, "\r\nOK\r"},
        {"\nOK\n", Verdict::None, "\nOK\n"},
        {"\r\nNO CARRIER\r\n", Verdict::None, "\r\nNO CARRIER\r\n"},
        {"+CME ERROR: 1\r\n", Verdict::None, "+CME ERROR: 1\r\n"},
        {"\r\n+CME ERROR: 1\n", Verdict::None, " 1\n"},
        {"\r\n+CMS ERROR: 12", Verdict::None, " 12"},
    };
    for (const Answer& answer : answers)
        for (const std::size_t readSize : {1, 2, 3, 5, 7, 13, 1023})
            Check(answer, readSize);
    // Within one read the order of the tests decides, not the order of arrival.
    const Answer wholes[] = {
        {"\r\nERROR\r\n\r\nOK\r\n", Verdict::Ok, "ERROR"},
        {"\r\n+CME ERROR: 7\r\n\r\nOK\r\n", Verdict::Ok, "+CME ERROR: 7"},
        {"\r\n+CME ERROR: 7\r\n\r\nERROR\r\n", Verdict::Error, ""},
        {"\r\n+CMS ERROR: 5\r\n+CME ERROR: 7\r\n", Verdict::CmeError, "7"},
        {"\r\n+CME ERROR: 7\r\n+CMS ERROR: 5\r\n", Verdict::CmeError, "5"},
        {"a\r\n+CME ERROR: 1\r\n+CME ERROR: 2\r\n", Verdict::CmeError, "1\r\n+CME ERROR: 2"},
    };
    for (const Answer& answer : wholes)
        Check(answer, 1023);
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

TEST(FinalResult, KeepsABoundedPartOfAnEndlessAnswer) {
    const std::string most(CFinalResult::kMaxResponse, 'x');
    const Answer endings[] = {
        {"\r\nOK\r\n", Verdict::Ok, most},
        {"\r\nERROR\r\n", Verdict::Error, ""},
        {"\r\n+CMS ERROR: 42\r\n", Verdict::CmsError, "42"},
        {"", Verdict::None, most},
    };
    for (const Answer& ending : endings) {
        // Up to the bound but for a marker's beginning, to the bound, and far beyond it.
        for (const std::size_t length : {most.size() - 3, most.size(), 3 * most.size()}) {
            const std::string bytes = std::string(length, 'x').append(ending.bytes);
            for (const std::size_t readSize : {13, 1000})
                Check({bytes, ending.verdict, ending.response.substr(0, length)}, readSize);
        }
    }
}

} // namespace
