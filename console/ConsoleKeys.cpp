#include "console/ConsoleKeys.h"

#include "console/Console.h"

#include <algorithm>

namespace platform {
namespace {

constexpr CConsoleKeys::Match ONE_BYTE = {CConsoleKeys::Kind::BYTE, 1, 0, 0};
constexpr CConsoleKeys::Match NOT_YET = {CConsoleKeys::Kind::MORE, 0, 0, 0};
constexpr CConsoleKeys::Match WITH_ALT = {CConsoleKeys::Kind::ALT, 1, 0, 0};

constexpr bool IsBetween(std::uint8_t byte, std::uint8_t first, std::uint8_t last) {
    return byte >= first && byte <= last;
}

// How the bytes behind "ESC [" and "ESC O" go on.
enum class Part { INNER, LAST, FOREIGN };

// Parameters, intermediate bytes, a final byte. The Linux console has a second "[" before it, and
// rxvt ends some with "$", but none whose parameters are more than a number.
Part PartOfControl(const std::uint8_t* bytes, std::size_t index) {
    const std::uint8_t byte = bytes[index];
    if (byte == '[' && index == 2)
        return Part::INNER;
    if (byte == '$')
        return std::all_of(bytes + 2, bytes + index,
                           [](std::uint8_t digit) { return IsBetween(digit, '0', '9'); })
                   ? Part::LAST
                   : Part::INNER;
    if (IsBetween(byte, 0x20, 0x3F))
        return Part::INNER;
    return IsBetween(byte, 0x40, 0x7E) ? Part::LAST : Part::FOREIGN;
}

// One character; some terminals put the modifiers before it.
Part PartOfShift(const std::uint8_t* bytes, std::size_t index) {
    const std::uint8_t byte = bytes[index];
    if (IsBetween(byte, '0', '9') || byte == ';')
        return Part::INNER;
    return IsBetween(byte, 0x40, 0x7E) ? Part::LAST : Part::FOREIGN;
}

// The oldest mouse reports have a button and two places behind "ESC [ M", a printable byte each.
CConsoleKeys::Match MouseReport(const std::uint8_t* bytes, std::size_t count, bool final) {
    constexpr std::size_t INTRODUCER = 3;
    constexpr std::size_t WHOLE = 6;
    std::size_t length = INTRODUCER;
    while (length < std::min(count, WHOLE) && bytes[length] >= 0x20)
        ++length;
    if (length == count && length < WHOLE && !final)
        return NOT_YET;
    return {CConsoleKeys::Kind::KEY, static_cast<std::uint8_t>(length), CConsoleKeys::OTHER, 0};
}

} // namespace

bool CConsoleKeys::Add(std::string_view sequence, WORD virtualKey, DWORD controlKeys) {
    constexpr char ESC = static_cast<char>(ESCAPE);
    if (sequence.size() < 2 || sequence.size() > LONGEST || sequence[0] != ESC ||
        sequence.find(ESC, 1) != std::string_view::npos)
        return false;
    std::uint16_t node = 0;
    for (const char byte : sequence.substr(1)) {
        node = MakeChild(node, static_cast<std::uint8_t>(byte));
        if (node == 0)
            return false;
    }
    m_nodes[node].virtualKey = static_cast<std::uint8_t>(virtualKey);
    m_nodes[node].controlKeys = static_cast<std::uint8_t>(controlKeys);
    return true;
}

std::uint16_t CConsoleKeys::ChildOf(std::uint16_t node, std::uint8_t byte) const {
    std::uint16_t child = m_nodes[node].child;
    while (child != 0 && m_nodes[child].byte != byte)
        child = m_nodes[child].next;
    return child;
}

std::uint16_t CConsoleKeys::MakeChild(std::uint16_t node, std::uint8_t byte) {
    const std::uint16_t child = ChildOf(node, byte);
    if (child != 0)
        return child;
    if (m_nNodes == MOST_NODES)
        return 0;
    m_nodes[m_nNodes] = {byte, 0, 0, 0, m_nodes[node].child};
    m_nodes[node].child = m_nNodes;
    return m_nNodes++;
}

CConsoleKeys::Match CConsoleKeys::Find(const std::uint8_t* bytes, std::size_t count,
                                       bool final) const {
    if (bytes[0] != ESCAPE)
        return ONE_BYTE;
    if (count < 2 || bytes[1] != ESCAPE)
        return Walk(bytes, count, final);
    Match match = Walk(bytes + 1, count - 1, final);
    if (match.kind == Kind::BYTE)
        return ONE_BYTE;
    if (match.kind == Kind::KEY) {
        ++match.length;
        match.controlKeys |= LEFT_ALT_PRESSED;
    }
    return match;
}

CConsoleKeys::Match CConsoleKeys::FindTyped(const std::uint8_t* bytes, std::size_t count,
                                            bool final) const {
    const Match known = Find(bytes, count, final);
    if (known.kind != Kind::BYTE || bytes[0] != ESCAPE || count < 2)
        return known;
    if (bytes[1] != ESCAPE)
        return Other(bytes, count, final);
    // The key Esc twice, unless the second one begins a control sequence.
    Match match = count > 2 && bytes[2] != ESCAPE ? Other(bytes + 1, count - 1, final) : ONE_BYTE;
    if (match.kind == Kind::ALT)
        return ONE_BYTE;
    if (match.kind == Kind::KEY)
        ++match.length;
    return match;
}

// What begins with ESC and another byte and is not in the table.
CConsoleKeys::Match CConsoleKeys::Other(const std::uint8_t* bytes, std::size_t count, bool final) {
    if (bytes[1] != '[' && bytes[1] != 'O')
        return WITH_ALT;
    const auto partOf = bytes[1] == '[' ? PartOfControl : PartOfShift;
    for (std::size_t index = 2; index < std::min(count, LONGEST_OTHER); ++index) {
        const Part part = partOf(bytes, index);
        if (part == Part::INNER)
            continue;
        if (part == Part::FOREIGN && index == 2)
            return WITH_ALT;
        if (bytes[1] == '[' && bytes[index] == 'M' && index == 2)
            return MouseReport(bytes, count, final);
        const std::size_t length = part == Part::LAST ? index + 1 : index;
        return {Kind::KEY, static_cast<std::uint8_t>(length), OTHER, 0};
    }
    if (count < LONGEST_OTHER && !final)
        return NOT_YET;
    if (count == 2)
        return WITH_ALT;
    return {Kind::KEY, static_cast<std::uint8_t>(std::min(count, LONGEST_OTHER)), OTHER, 0};
}

// The longest sequence of the table that the bytes begin with.
CConsoleKeys::Match CConsoleKeys::Walk(const std::uint8_t* bytes, std::size_t count,
                                       bool final) const {
    Match best = ONE_BYTE;
    std::uint16_t node = 0;
    for (std::size_t index = 1; index < count; ++index) {
        node = ChildOf(node, bytes[index]);
        if (node == 0)
            return best;
        const Node& reached = m_nodes[node];
        if (reached.virtualKey != 0)
            best = {Kind::KEY, static_cast<std::uint8_t>(index + 1), reached.virtualKey,
                    reached.controlKeys};
    }
    return final || m_nodes[node].child == 0 ? best : NOT_YET;
}

} // namespace platform
