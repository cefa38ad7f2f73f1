// Where sequences begin and end among a device's bytes, in whatever pieces these come.
#include "terminal/EscapeParser.h"

#include <gtest/gtest.h>

namespace {

using std::string_literals::operator""s;

// Text as it is, "{parameters final}" for a sequence, "{}" for a dropped one, "..." for one that is
// not over at the end.
std::string Parse(std::string_view bytes, std::size_t pieceSize) {
    BOOL isCollecting = FALSE;
    CEscapeParser::Sequence sequence{};
    DWORD length = 0;
    CEscapeParser parser(isCollecting, sequence, length);
    std::string verdicts;
    for (; !bytes.empty(); bytes.remove_prefix(std::min(pieceSize, bytes.size()))) {
        std::span<const BYTE> piece(reinterpret_cast<const BYTE*>(bytes.data()),
                                    std::min(pieceSize, bytes.size()));
        while (!piece.empty()) {
            const EscapeVerdict verdict = parser.Next(piece);
            verdicts.append(verdict.text.begin(), verdict.text.end());
            if (verdict.kind == EscapeVerdict::Kind::Sequence)
                verdicts.append("{").append(parser.Parameters()) +=
                    {static_cast<char>(verdict.finalCharacter), '}'};
            else if (verdict.kind == EscapeVerdict::Kind::Dropped)
                verdicts += "{}";
        }
    }
    return verdicts + (isCollecting ? "..." : "");
}

TEST(EscapeParser, DividesBytesInAnyPieces) {
    const std::string full = "\x1B[" + std::string(253, '1');
    const std::pair<std::string, std::string> rows[] = {
        {"a\xC3\xA9[1m\r\n\0!"s, "a\xC3\xA9[1m\r\n\0!"s},
        {"a\x1B[5;10Hb", "a{5;10H}b"},
        {"\x1B[m\x1B[@\x1B[z\x1B[Z", "{m}{@}{z}{Z}"},
        {"\x1B[?25h\x1B[[A\x1B[ {`_\xFF\r\nA", "{?25h}{[A}{ {`_\xFF\r\nA}"},
        {"\x1B[4\0C\x1B[\0m"s, "{4\0C}{\0m}"s},
        // Only '[' makes it a sequence.
        {"\x1Bxy\x1BH\x1B!\x1B\n", "\x1Bxy\x1BH\x1B!\x1B\n"},
        {"\x1B[12!CA", "{}CA"},
        {"\x1B\x1B[A\x1B[12\x1B[3C", "{A}{3C}"},
        {"a\x1B", "a..."},
        {full + "CA", "{" + full.substr(2) + "C}A"},
        {full + "1", "..."},
        {full + "1CA", "{}A"},
        {full + "1!A\x1B[B", "{}A{B}"},
        {full + "111;C", "{}1;C"},
    };
    for (const auto& [bytes, verdicts] : rows)
        for (const std::size_t pieceSize : {1, 2, 3, 1000})
            EXPECT_EQ(Parse(bytes, pieceSize), verdicts) << "in pieces of " << pieceSize;
}

} // namespace
