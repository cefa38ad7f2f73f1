#include "console/ConsoleColours.h"

#include "console/Console.h"

namespace platform {
namespace {

// The console counts blue 1, green 2, red 4; the sequences count red 1, green 2, blue 4.
constexpr int kSequenceColour[8] = {0, 4, 2, 6, 1, 5, 3, 7};
constexpr int kForeground = 30;
constexpr int kBackground = 40;
constexpr int kBright = 60; // from 30-37 to 90-97, from 40-47 to 100-107
constexpr int kOwn = 9;     // 39, 49
constexpr int kBold = 1;
constexpr int kNotBold = 22;

int ForegroundOf(int attribute) {
    return attribute & 0x0F;
}

int BackgroundOf(int attribute) {
    return attribute >> 4 & 0x0F;
}

bool HasOwnForeground(int attribute) {
    return (attribute & (EXACT_FOREGROUND | 7)) == 7;
}

int NumberOf(int base, int colour) {
    return base + kSequenceColour[colour & 7] + ((colour & 8) != 0 ? kBright : 0);
}

// What a terminal is told for an attribute.
struct Rendition {
    int weight;
    int foreground;
    int background;
};

Rendition RenditionOf(int attribute) {
    const int foreground = ForegroundOf(attribute);
    const bool own = HasOwnForeground(attribute);
    return {own && foreground == 0x0F ? kBold : kNotBold,
            own ? kForeground + kOwn : NumberOf(kForeground, foreground),
            CConsoleColours::HasOwnBackground(attribute)
                ? kBackground + kOwn
                : NumberOf(kBackground, BackgroundOf(attribute))};
}

} // namespace

bool CConsoleColours::HasOwnBackground(int attribute) {
    return BackgroundOf(attribute) == 0 && (attribute & EXACT_BACKGROUND) == 0;
}

WORD CConsoleColours::Normal(WORD attribute) {
    if (ForegroundOf(attribute) != 7 && ForegroundOf(attribute) != 0x0F)
        attribute &= static_cast<WORD>(~EXACT_FOREGROUND);
    if (BackgroundOf(attribute) != 0)
        attribute &= static_cast<WORD>(~EXACT_BACKGROUND);
    return attribute;
}

void CConsoleColours::Sync(int attribute) {
    if (m_nTerminal == attribute)
        return;
    const int old = m_nTerminal == kUnknown ? kDefault : m_nTerminal;
    if (m_nTerminal == kUnknown || attribute == kDefault)
        m_gather.Put("\x1b[0m");
    m_nTerminal = attribute;
    if (attribute == kDefault)
        return;
    const Rendition from = RenditionOf(old);
    const Rendition to = RenditionOf(attribute);
    int numbers[3];
    int count = 0;
    for (const auto part : {&Rendition::weight, &Rendition::foreground, &Rendition::background}) {
        if (from.*part != to.*part)
            numbers[count++] = to.*part;
    }
    if (count != 0)
        m_gather.PutSequence(numbers, count, 'm');
}

void CConsoleColours::SyncBackground() {
    if (m_nTerminal == kUnknown ||
        RenditionOf(m_nTerminal).background != RenditionOf(m_wWanted).background)
        Sync();
}

} // namespace platform
