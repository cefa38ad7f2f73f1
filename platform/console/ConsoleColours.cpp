#include "platform/console/ConsoleColours.h"

namespace platform {
namespace {

// The console counts blue 1, green 2, red 4; the sequences count red 1, green 2, blue 4.
constexpr int SEQUENCE_COLOUR[8] = {0, 4, 2, 6, 1, 5, 3, 7};
constexpr int FOREGROUND = 30;
constexpr int BACKGROUND = 40;
constexpr int BRIGHT = 60; // from 30-37 to 90-97, from 40-47 to 100-107

int NumberOf(int base, int colour) {
    return base + SEQUENCE_COLOUR[colour & 7] + ((colour & 8) != 0 ? BRIGHT : 0);
}

// The background of an attribute; that of the default colours is like no other.
int BackgroundOf(int attribute) {
    constexpr int OWN = 16;
    return attribute == CConsoleColours::DEFAULT ? OWN : attribute >> 4;
}

} // namespace

void CConsoleColours::Sync(std::uint8_t attribute) {
    if (m_nTerminal == attribute)
        return;
    const int old = m_nTerminal;
    const bool fromColours = old != UNKNOWN && old != DEFAULT;
    m_nTerminal = attribute;
    if (attribute == DEFAULT) {
        m_gather.Put("\x1b[0m");
        return;
    }
    if (old == UNKNOWN)
        m_gather.Put("\x1b[0m");
    const int foreground = NumberOf(FOREGROUND, attribute & 0x0F);
    const int background = NumberOf(BACKGROUND, attribute >> 4);
    if (fromColours && (old >> 4) == (attribute >> 4))
        m_gather.PutSequence(foreground, 'm');
    else if (fromColours && (old & 0x0F) == (attribute & 0x0F))
        m_gather.PutSequence(background, 'm');
    else
        m_gather.PutSequence(foreground, background, 'm');
}

void CConsoleColours::SyncBackground() {
    if (BackgroundOf(m_nTerminal) != BackgroundOf(m_byWanted))
        Sync();
}

} // namespace platform
