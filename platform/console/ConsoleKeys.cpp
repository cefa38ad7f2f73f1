#include "platform/console/ConsoleKeys.h"

#include "platform/Console.h"

namespace platform {
namespace {

constexpr CConsoleKeys::Match ONE_BYTE = {CConsoleKeys::Kind::BYTE, 1, 0, 0};
constexpr CConsoleKeys::Match NOT_YET = {CConsoleKeys::Kind::MORE, 0, 0, 0};

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
