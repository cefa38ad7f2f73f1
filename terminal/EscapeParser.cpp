// A table of transitions decides about each byte from an ESC on, by how much has been collected and
// by the class of the byte. Text goes by without it, up to the next ESC.
#include "terminal/EscapeParser.h"

#include <cstring>

namespace {

using Kind = EscapeVerdict::Kind;

constexpr BYTE kEscape[] = {0x1B};
constexpr DWORD kLongestSequence = 255;

// Of a sequence its ESC has come, something behind that has, all that is kept has.
enum State { kBegun, kCollecting, kFull };

enum Class { kOther, kEscapeByte, kIntroducer, kFinal, kAbandon };

enum class Action : BYTE { ShowEscape, Begin, Collect, Finish, Abandon, Overflow };

using enum Action;

constexpr Action kTransitions[3][5] = {
    // Other, ESC, '[', final, '!'
    {ShowEscape, Begin, Collect, ShowEscape, ShowEscape},
    {Collect, Begin, Collect, Finish, Abandon},
    {Overflow, Begin, Overflow, Overflow, Overflow},
};

constexpr Class ClassOf(std::size_t byte) {
    const std::size_t lower = byte | 0x20;
    if ((lower >= 'a' && lower <= 'z') || byte == '@')
        return kFinal;
    if (byte == kEscape[0])
        return kEscapeByte;
    if (byte == '[')
        return kIntroducer;
    return byte == '!' ? kAbandon : kOther;
}

// The same by the bytes themselves, so that each costs one look.
using Row = std::array<Action, 256>;

constexpr auto kActions = [] {
    std::array<Row, std::size(kTransitions)> actions{};
    for (std::size_t state = 0; state < actions.size(); ++state)
        for (std::size_t byte = 0; byte < actions[state].size(); ++byte)
            actions[state][byte] = kTransitions[state][ClassOf(byte)];
    return actions;
}();

State StateOf(DWORD length) {
    if (length == 0)
        return kBegun;
    return length < kLongestSequence ? kCollecting : kFull;
}

std::span<const BYTE> Take(std::span<const BYTE>& bytes, std::size_t count) {
    const std::span<const BYTE> taken = bytes.first(count);
    bytes = bytes.subspan(count);
    return taken;
}

std::size_t TextLength(std::span<const BYTE> bytes) {
    const void* const escape = std::memchr(bytes.data(), kEscape[0], bytes.size());
    return escape ? static_cast<std::size_t>(static_cast<const BYTE*>(escape) - bytes.data())
                  : bytes.size();
}

// Takes the bytes that begin a sequence or go on with one, and returns what the next one asks for:
// Begin or Collect when there is none. An ESC begins one whatever the one before has left.
Action CollectFrom(std::span<const BYTE>& bytes, CEscapeParser::Sequence& sequence, DWORD& length) {
    const BYTE* next = bytes.data();
    const BYTE* const end = next + bytes.size();
    DWORD collected = length;
    Action action = Collect;
    for (const Row* row = &kActions[StateOf(collected)]; next != end; ++next) {
        action = (*row)[*next];
        if (action == Collect) {
            sequence[collected++] = static_cast<char>(*next);
            row = &kActions[collected < kLongestSequence ? kCollecting : kFull];
        } else if (action == Begin) {
            sequence[0] = '\0';
            collected = 0;
            row = &kActions[kBegun];
        } else {
            break;
        }
    }
    length = collected;
    bytes = {next, end};
    return action;
}

} // namespace

EscapeVerdict CEscapeParser::Next(std::span<const BYTE>& bytes) {
    if (!m_bCollecting && bytes.front() != kEscape[0])
        return {Kind::Text, Take(bytes, TextLength(bytes))};
    const Action action = CollectFrom(bytes, m_szSequence, m_nLength);
    m_bCollecting = FALSE;
    switch (action) {
    case ShowEscape:
        // The byte itself begins the text that comes next.
        return {Kind::Text, kEscape};
    case Finish:
        return {Kind::Sequence, {}, End(bytes)};
    case Abandon:
        End(bytes);
        return {Kind::Dropped};
    case Overflow:
        Take(bytes, 1);
        m_nLength = 0;
        m_szSequence[0] = '\0';
        return {Kind::Dropped};
    default:
        m_bCollecting = TRUE;
        return {Kind::Unfinished};
    }
}

// The last byte of a sequence.
BYTE CEscapeParser::End(std::span<const BYTE>& bytes) {
    const BYTE last = Take(bytes, 1).front();
    m_szSequence[m_nLength++] = static_cast<char>(last);
    m_szSequence[m_nLength] = '\0';
    return last;
}

std::string_view CEscapeParser::Parameters() const {
    if (m_nLength < 2)
        return {};
    return {m_szSequence.data() + 1, m_nLength - 2};
}
