#include "terminal/GraphicRendition.h"

#include "terminal/ConsoleScreen.h"

#include <array>
#include <utility>

namespace {

constexpr int kBright = 8;
constexpr int kReverse = 7;

// Console colours count blue, green, red from the low bit up, the sequences' colours the other way.
constexpr std::array<int, 8> kConsoleColours = {0, 4, 2, 6, 1, 5, 3, 7};

// What a parameter does: of each value the bits to keep and the bits to set. Masks and no branches,
// because coloured output has a parameter for every few characters and no order that a processor
// could foresee.
struct Change {
    int keepForeground = 0x0F;
    int setForeground = 0;
    int keepBackground = 0x0F;
    int setBackground = 0;
    WORD keepFlags = 0xFFFF;
    WORD setFlags = 0;
    WORD keepExact = 0xFFFF;
    WORD setExact = 0;
    WORD brightFlags = 0; // with one of these flags the foreground is bright
};

constexpr Change SetFlag(WORD flag) {
    return {.setFlags = flag};
}

constexpr std::array kChanges = [] {
    std::array<Change, 48> changes{};
    changes[0] = {.keepForeground = 0,
                  .setForeground = 7,
                  .keepBackground = 0,
                  .keepFlags = 0,
                  .keepExact = 0};
    changes[1] = {.setForeground = kBright, .setFlags = ATTR_BOLD};
    changes[4] = SetFlag(ATTR_UNDERLINE);
    changes[5] = changes[6] = SetFlag(ATTR_BLINK);
    changes[8] = SetFlag(ATTR_CONCEALED);
    for (std::size_t colour = 0; colour < kConsoleColours.size(); ++colour) {
        changes[30 + colour] = {.keepForeground = 0,
                                .setForeground = kConsoleColours[colour],
                                .setExact = EXACT_FOREGROUND,
                                .brightFlags = ATTR_BOLD};
        changes[40 + colour] = {.keepBackground = 0,
                                .setBackground = kConsoleColours[colour],
                                .setExact = EXACT_BACKGROUND};
    }
    return changes;
}();

// The brightness stays with the foreground.
void Reverse(GraphicRendition& rendition) {
    const int moved = rendition.foreground < kBright ? 0 : kBright;
    std::swap(rendition.foreground, rendition.background);
    rendition.foreground += moved;
    rendition.background -= moved;
    rendition.flags |= ATTR_REVERSE;
    const bool wasExactForeground = (rendition.exact & EXACT_FOREGROUND) != 0;
    const bool wasExactBackground = (rendition.exact & EXACT_BACKGROUND) != 0;
    rendition.exact = static_cast<WORD>((wasExactBackground ? EXACT_FOREGROUND : 0) |
                                        (wasExactForeground ? EXACT_BACKGROUND : 0));
}

} // namespace

void ApplyGraphicRendition(int parameter, GraphicRendition& rendition) {
    const auto index = static_cast<std::size_t>(parameter);
    if (index >= kChanges.size())
        return;
    if (parameter == kReverse)
        return Reverse(rendition);
    const Change& change = kChanges[index];
    const bool bright = (rendition.flags & change.brightFlags) != 0;
    rendition.foreground = (rendition.foreground & change.keepForeground) | change.setForeground |
                           kBright * static_cast<int>(bright);
    rendition.background = (rendition.background & change.keepBackground) | change.setBackground;
    rendition.flags = static_cast<WORD>((rendition.flags & change.keepFlags) | change.setFlags);
    rendition.exact = static_cast<WORD>((rendition.exact & change.keepExact) | change.setExact);
}
