#include "console/ConsoleKeyTable.h"

#include "console/Console.h"

#include <cstdio>
#include <memory>
#include <string_view>

extern "C" { // the header does not say so itself
#include <unibilium.h>
}

namespace platform {
namespace {

constexpr char kNone = 0;

// One key of every family. Sequences are: CSI letter and SS3 letter (xterm and most others), CSI
// number ~ (the VT220's editing keypad and function keys; Home and End have other numbers on rxvt),
// CSI [ letter (the Linux console's first function keys), lower-case letters with Shift and Ctrl
// (rxvt's arrows). OtherNumber is the one that rxvt uses.
struct KeyOfFamilies {
    WORD virtualKey;
    int number;       // before ~
    int otherNumber;  // before ~
    int terminfo;     // unibi_string
    char letter;      // after CSI and SS3, and with modifiers
    char linuxLetter; // after CSI [
    char rxvtLetter;  // after CSI with Shift, after SS3 with Ctrl
};

constexpr KeyOfFamilies kKeys[] = {
    {VK_UP, 0, 0, unibi_key_up, 'A', kNone, 'a'},
    {VK_DOWN, 0, 0, unibi_key_down, 'B', kNone, 'b'},
    {VK_RIGHT, 0, 0, unibi_key_right, 'C', kNone, 'c'},
    {VK_LEFT, 0, 0, unibi_key_left, 'D', kNone, 'd'},
    {VK_HOME, 1, 7, unibi_key_home, 'H', kNone, kNone},
    {VK_END, 4, 8, unibi_key_end, 'F', kNone, kNone},
    {VK_INSERT, 2, 0, unibi_key_ic, kNone, kNone, kNone},
    {VK_DELETE, 3, 0, unibi_key_dc, kNone, kNone, kNone},
    {VK_PRIOR, 5, 0, unibi_key_ppage, kNone, kNone, kNone},
    {VK_NEXT, 6, 0, unibi_key_npage, kNone, kNone, kNone},
    {VK_F1, 11, 0, unibi_key_f1, 'P', 'A', kNone},
    {VK_F2, 12, 0, unibi_key_f2, 'Q', 'B', kNone},
    {VK_F3, 13, 0, unibi_key_f3, 'R', 'C', kNone},
    {VK_F4, 14, 0, unibi_key_f4, 'S', 'D', kNone},
    {VK_F5, 15, 0, unibi_key_f5, kNone, 'E', kNone},
    {VK_F6, 17, 0, unibi_key_f6, kNone, kNone, kNone},
};

// xterm adds 1 to the sum of Shift 1, Alt 2, Ctrl 4, Meta 8.
constexpr int kFirstModifier = 2;
constexpr int kLastModifier = 16;

DWORD ControlKeysOf(int modifier) {
    const int held = modifier - 1;
    return ((held & 1) != 0 ? SHIFT_PRESSED : 0) | ((held & 10) != 0 ? LEFT_ALT_PRESSED : 0) |
           ((held & 4) != 0 ? LEFT_CTRL_PRESSED : 0);
}

// What rxvt ends a numbered sequence with instead of ~.
struct RxvtEnd {
    char end;
    DWORD controlKeys;
};
constexpr RxvtEnd kRxvtEnds[] = {
    {'^', LEFT_CTRL_PRESSED}, {'$', SHIFT_PRESSED}, {'@', LEFT_CTRL_PRESSED | SHIFT_PRESSED}};

template <class... Parts>
void Add(CConsoleKeys& keys, WORD virtualKey, DWORD controlKeys, const char* format,
         Parts... parts) {
    char sequence[CConsoleKeys::kLongest + 1];
    std::snprintf(sequence, sizeof sequence, format, parts...);
    keys.Add(sequence, virtualKey, controlKeys);
}

void AddNumber(CConsoleKeys& keys, const KeyOfFamilies& key, int number) {
    if (number == 0)
        return;
    Add(keys, key.virtualKey, 0, "\x1b[%d~", number);
    for (const RxvtEnd& end : kRxvtEnds)
        Add(keys, key.virtualKey, end.controlKeys, "\x1b[%d%c", number, end.end);
    for (int modifier = kFirstModifier; modifier <= kLastModifier; ++modifier)
        Add(keys, key.virtualKey, ControlKeysOf(modifier), "\x1b[%d;%d~", number, modifier);
}

void AddLetter(CConsoleKeys& keys, const KeyOfFamilies& key) {
    if (key.letter == kNone)
        return;
    Add(keys, key.virtualKey, 0, "\x1b[%c", key.letter);
    Add(keys, key.virtualKey, 0, "\x1bO%c", key.letter);
    for (int modifier = kFirstModifier; modifier <= kLastModifier; ++modifier) {
        const DWORD controlKeys = ControlKeysOf(modifier);
        Add(keys, key.virtualKey, controlKeys, "\x1b[1;%d%c", modifier, key.letter);
        // As older versions of several terminals have it.
        Add(keys, key.virtualKey, controlKeys, "\x1b[%d%c", modifier, key.letter);
        Add(keys, key.virtualKey, controlKeys, "\x1bO%d%c", modifier, key.letter);
        Add(keys, key.virtualKey, controlKeys, "\x1bO1;%d%c", modifier, key.letter);
    }
}

void AddLetterOfOne(CConsoleKeys& keys, const KeyOfFamilies& key) {
    if (key.linuxLetter != kNone)
        Add(keys, key.virtualKey, 0, "\x1b[[%c", key.linuxLetter);
    if (key.rxvtLetter == kNone)
        return;
    Add(keys, key.virtualKey, SHIFT_PRESSED, "\x1b[%c", key.rxvtLetter);
    Add(keys, key.virtualKey, LEFT_CTRL_PRESSED, "\x1bO%c", key.rxvtLetter);
}

// A control sequence is a key without standing in the table, and may only be the beginning of one;
// these are others, as the ESC TAB that some terminals send for Shift+Tab.
void AddOtherKeys(CConsoleKeys& keys, const unibi_term* entry) {
    for (int index = unibi_string_begin_ + 1; index < unibi_string_end_; ++index) {
        const auto which = static_cast<unibi_string>(index);
        const char* const text = unibi_get_str(entry, which);
        if (text == nullptr || !std::string_view(unibi_name_str(which)).starts_with("key_"))
            continue;
        const std::string_view sequence = text;
        if (sequence.size() < 2 || sequence[1] == '[' || sequence[1] == 'O')
            continue;
        const auto* const bytes = reinterpret_cast<const std::uint8_t*>(text);
        if (keys.Find(bytes, sequence.size(), true).kind == CConsoleKeys::Kind::Byte)
            keys.Add(sequence, CConsoleKeys::kOther, 0);
    }
}

} // namespace

void AddKnownKeys(CConsoleKeys& keys) {
    for (const KeyOfFamilies& key : kKeys) {
        AddLetter(keys, key);
        AddNumber(keys, key, key.number);
        AddNumber(keys, key, key.otherNumber);
        AddLetterOfOne(keys, key);
    }
}

void AddTerminfoKeys(CConsoleKeys& keys, const char* terminalType) {
    if (terminalType == nullptr || *terminalType == 0)
        return;
    const std::unique_ptr<unibi_term, decltype(&unibi_destroy)> entry(unibi_from_term(terminalType),
                                                                      &unibi_destroy);
    if (!entry)
        return;
    for (const KeyOfFamilies& key : kKeys) {
        const char* const sequence =
            unibi_get_str(entry.get(), static_cast<unibi_string>(key.terminfo));
        if (sequence != nullptr)
            keys.Add(sequence, key.virtualKey, 0);
    }
    AddOtherKeys(keys, entry.get());
}

} // namespace platform
