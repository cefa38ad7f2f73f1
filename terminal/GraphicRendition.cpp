#include "terminal/GraphicRendition.h"

#include "terminal/ConsoleScreen.h"

#include <array>
#include <utility>

namespace {

constexpr int kBright = 8;

// Console colours count blue, green, red from the low bit up, the sequences' colours the other way.
constexpr std::array<int, 8> kConsoleColours = {0, 4, 2, 6, 1, 5, 3, 7};

// The offset is the parameter's place in its row's range.
using Change = void (*)(GraphicRendition& rendition, std::size_t offset);

void Reset(GraphicRendition& rendition, std::size_t) {
    rendition = {7, 0, 0};
}

void SetBold(GraphicRendition& rendition, std::size_t) {
    rendition.flags |= ATTR_BOLD;
    if (rendition.foreground < kBright)
        rendition.foreground += kBright;
}

template <WORD flag> void SetFlag(GraphicRendition& rendition, std::size_t) {
    rendition.flags |= flag;
}

// The brightness stays with the foreground.
void SetReverse(GraphicRendition& rendition, std::size_t) {
    rendition.flags |= ATTR_REVERSE;
    const int moved = rendition.foreground < kBright ? 0 : kBright;
    std::swap(rendition.foreground, rendition.background);
    rendition.foreground += moved;
    rendition.background -= moved;
}

void SetForeground(GraphicRendition& rendition, std::size_t offset) {
    const bool bold = (rendition.flags & ATTR_BOLD) != 0;
    rendition.foreground = kConsoleColours[offset] + (bold ? kBright : 0);
}

void SetBackground(GraphicRendition& rendition, std::size_t offset) {
    rendition.background = kConsoleColours[offset];
}

struct Row {
    int first;
    int last;
    Change change;
};

constexpr std::array kRows = {
    Row{0, 0, Reset},
    Row{1, 1, SetBold},
    Row{4, 4, SetFlag<ATTR_UNDERLINE>},
    Row{5, 6, SetFlag<ATTR_BLINK>},
    Row{7, 7, SetReverse},
    Row{8, 8, SetFlag<ATTR_CONCEALED>},
    Row{30, 37, SetForeground},
    Row{40, 47, SetBackground},
};

// The changes by their parameter, so that a parameter costs no search.
constexpr std::array kChanges = [] {
    std::array<const Row*, kRows.back().last + 1> changes{};
    for (const Row& row : kRows)
        for (int parameter = row.first; parameter <= row.last; ++parameter)
            changes[static_cast<std::size_t>(parameter)] = &row;
    return changes;
}();

} // namespace

GraphicRendition ApplyGraphicRendition(int parameter, GraphicRendition rendition) {
    const auto index = static_cast<std::size_t>(parameter);
    const Row* const row = index < kChanges.size() ? kChanges[index] : nullptr;
    if (row)
        row->change(rendition, static_cast<std::size_t>(parameter - row->first));
    return rendition;
}
