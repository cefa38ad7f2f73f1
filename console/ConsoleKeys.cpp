// The table is a tree of bytes: each node has its first child and its next sibling, as numbers in
// one array. Finding walks it as far as the bytes go and keeps the longest sequence that ended on
// the way. What no branch leads to is told by its form alone.
#include "console/ConsoleKeys.h"

#include "console/Console.h"

#include <algorithm>

namespace platform {
namespace {

constexpr CConsoleKeys::Match kOneByte = {CConsoleKeys::Kind::Byte, 1, 0, 0};
constexpr CConsoleKeys::Match kNotYet = {CConsoleKeys::Kind::More, 0, 0, 0};
constexpr CConsoleKeys::Match kWithAlt = {CConsoleKeys::Kind::Alt, 1, 0, 0};

constexpr bool IsBetween(std::uint8_t byte, std::uint8_t first, std::uint8_t last) {
    return byte >= first && byte <= last;
}

// How the bytes behind "ESC [" and "ESC O" go on.
enum class Part { Inner, Last, Foreign };

// Parameters, intermediate bytes, a final byte. The Linux console has a second "[" before it, and
// rxvt ends some with "$", but none whose parameters are more than a number.
Part PartOfControl(const std::uint8_t* bytes, std::size_t index) {
    const std::uint8_t byte = bytes[index];
    if (byte == '[' && index == 2)
        return Part::Inner;
    if (byte == '$')
        return std::all_of(bytes + 2, bytes + index,
                           [](std::uint8_t digit) { return IsBetween(digit, '0', '9'); })
                   ? Part::Last
                   : Part::Inner;
    if (IsBetween(byte, 0x20, 0x3F))
        return Part::Inner;
    return IsBetween(byte, 0x40, 0x7E) ? Part::Last : Part::Foreign;
}

// One character; some terminals put the modifiers before it.
Part PartOfShift(const std::uint8_t* bytes, std::size_t index) {
    const std::uint8_t byte = bytes[index];
    if (IsBetween(byte, '0', '9') || byte == ';')
        return Part::Inner;
    return IsBetween(byte, 0x40, 0x7E) ? Part::Last : Part::Foreign;
}

// The oldest mouse reports have a button and two places behind "ESC [ M", a printable byte each.
CConsoleKeys::Match MouseReport(const std::uint8_t* bytes, std::size_t count, bool final) {
    constexpr std::size_t kIntroducer = 3;
    constexpr std::size_t kWhole = 6;
    std::size_t length = kIntroducer;
    while (length < std::min(count, kWhole) && bytes[length] >= 0x20)
        ++length;
    if (length == count && length < kWhole && !final)
        return kNotYet;
    return {CConsoleKeys::Kind::Key, static_cast<std::uint8_t>(length), CConsoleKeys::kOther, 0};
}

} // namespace

bool CConsoleKeys::Add(std::string_view sequence, WORD virtualKey, DWORD controlKeys) {
    constexpr char kEsc = static_cast<char>(kEscape);
    if (sequence.size() < 2 || sequence.size() > kLongest || sequence[0] != kEsc ||
        sequence.find(kEsc, 1) != std::string_view::npos)
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
    if (m_nNodes == kMostNodes)
        return 0;
    m_nodes[m_nNodes] = {byte, 0, 0, 0, m_nodes[node].child};
    m_nodes[node].child = m_nNodes;
    return m_nNodes++;
}

CConsoleKeys::Match CConsoleKeys::Find(const std::uint8_t* bytes, std::size_t count,
                                       bool final) const {
    if (bytes[0] != kEscape)
        return kOneByte;
    if (count < 2 || bytes[1] != kEscape)
        return Walk(bytes, count, final);
    Match match = Walk(bytes + 1, count - 1, final);
    if (match.kind == Kind::Byte)
        return kOneByte;
    if (match.kind == Kind::Key) {
        ++match.length;
        match.controlKeys |= LEFT_ALT_PRESSED;
    }
    return match;
}

CConsoleKeys::Match CConsoleKeys::FindTyped(const std::uint8_t* bytes, std::size_t count,
                                            bool final) const {
    const Match known = Find(bytes, count, final);
    if (known.kind != Kind::Byte || bytes[0] != kEscape || count < 2)
        return known;
    if (bytes[1] != kEscape)
        return Other(bytes, count, final);
    // The key Esc twice, unless the second one begins a control sequence.
    Match match = count > 2 && bytes[2] != kEscape ? Other(bytes + 1, count - 1, final) : kOneByte;
    if (match.kind == Kind::Alt)
        return kOneByte;
    if (match.kind == Kind::Key)
        ++match.length;
    return match;
}

// What begins with ESC and another byte and is not in the table.
CConsoleKeys::Match CConsoleKeys::Other(const std::uint8_t* bytes, std::size_t count, bool final) {
    if (bytes[1] != '[' && bytes[1] != 'O')
        return kWithAlt;
    const auto partOf = bytes[1] == '[' ? PartOfControl : PartOfShift;
    for (std::size_t index = 2; index < std::min(count, kLongestOther); ++index) {
        const Part part = partOf(bytes, index);
        if (part == Part::Inner)
            continue;
        if (part == Part::Foreign && index == 2)
            return kWithAlt;
        if (bytes[1] == '[' && bytes[index] == 'M' && index == 2)
            return MouseReport(bytes, count, final);
        const std::size_t length = part == Part::Last ? index + 1 : index;
        return {Kind::Key, static_cast<std::uint8_t>(length), kOther, 0};
    }
    if (count < kLongestOther && !final)
        return kNotYet;
    if (count == 2)
        return kWithAlt;
    return {Kind::Key, static_cast<std::uint8_t>(std::min(count, kLongestOther)), kOther, 0};
}

// The longest sequence of the table that the bytes begin with.
CConsoleKeys::Match CConsoleKeys::Walk(const std::uint8_t* bytes, std::size_t count,
                                       bool final) const {
    Match best = kOneByte;
    std::uint16_t node = 0;
    for (std::size_t index = 1; index < count; ++index) {
        node = ChildOf(node, bytes[index]);
        if (node == 0)
            return best;
        const Node& reached = m_nodes[node];
        if (reached.virtualKey != 0)
            best = {Kind::Key, static_cast<std::uint8_t>(index + 1), reached.virtualKey,
                    reached.controlKeys};
    }
    return final || m_nodes[node].child == 0 ? best : kNotYet;
}

} // namespace platform
