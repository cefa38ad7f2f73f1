#include "platform/ConsoleKeyTable.h"

#include "platform/Console.h"

#include <cstdio>
#include <memory>

extern "C" { // the header does not say so itself
#include <unibilium.h>
}

namespace platform {
namespace {

constexpr char NONE = 0;

// One key of every family. Sequences are: CSI letter and SS3 letter (xterm and most others), CSI
// number ~ (the VT220's editing keypad and function keys; Home and End have other numbers on rxvt),
// CSI [ letter (the Linux console's first function keys), lower-case letters with Shift and Ctrl
// (rxvt's arrows). Other is the number that rxvt uses beside Number.
struct KeyOfFamilies {
    WORD virtualKey;
    WORD scanCode;
    char letter;      // after CSI and SS3, and with modifiers
    int number;       // before ~
    int otherNumber;  // before ~
    char linuxLetter; // after CSI [
    char rxvtLetter;  // after CSI with Shift, after SS3 with Ctrl
    int terminfo;     // unibi_string
};

constexpr KeyOfFamilies KEYS[] = {
    {VK_UP, 0x48, 'A', 0, 0, NONE, 'a', unibi_key_up},
    {VK_DOWN, 0x50, 'B', 0, 0, NONE, 'b', unibi_key_down},
    {VK_RIGHT, 0x4D, 'C', 0, 0, NONE, 'c', unibi_key_right},
    {VK_LEFT, 0x4B, 'D', 0, 0, NONE, 'd', unibi_key_left},
    {VK_HOME, 0x47, 'H', 1, 7, NONE, NONE, unibi_key_home},
    {VK_END, 0x4F, 'F', 4, 8, NONE, NONE, unibi_key_end},
    {VK_INSERT, 0x52, NONE, 2, 0, NONE, NONE, unibi_key_ic},
    {VK_DELETE, 0x53, NONE, 3, 0, NONE, NONE, unibi_key_dc},
    {VK_PRIOR, 0x49, NONE, 5, 0, NONE, NONE, unibi_key_ppage},
    {VK_NEXT, 0x51, NONE, 6, 0, NONE, NONE, unibi_key_npage},
    {VK_F1, 0x3B, 'P', 11, 0, 'A', NONE, unibi_key_f1},
    {VK_F2, 0x3C, 'Q', 12, 0, 'B', NONE, unibi_key_f2},
    {VK_F3, 0x3D, 'R', 13, 0, 'C', NONE, unibi_key_f3},
    {VK_F4, 0x3E, 'S', 14, 0, 'D', NONE, unibi_key_f4},
    {VK_F5, 0x3F, NONE, 15, 0, 'E', NONE, unibi_key_f5},
    {VK_F6, 0x40, NONE, 17, 0, NONE, NONE, unibi_key_f6},
};

// xterm adds 1 to the sum of Shift 1, Alt 2, Ctrl 4, Meta 8.
constexpr int FIRST_MODIFIER = 2;
constexpr int LAST_MODIFIER = 16;

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
constexpr RxvtEnd RXVT_ENDS[] = {
    {'^', LEFT_CTRL_PRESSED}, {'$', SHIFT_PRESSED}, {'@', LEFT_CTRL_PRESSED | SHIFT_PRESSED}};

template <class... Parts>
void Add(CConsoleKeys& keys, WORD virtualKey, DWORD controlKeys, const char* format,
         Parts... parts) {
    char sequence[CConsoleKeys::LONGEST + 1];
    std::snprintf(sequence, sizeof sequence, format, parts...);
    keys.Add(sequence, virtualKey, controlKeys);
}

void AddNumber(CConsoleKeys& keys, const KeyOfFamilies& key, int number) {
    if (number == 0)
        return;
    Add(keys, key.virtualKey, 0, "\x1b[%d~", number);
    for (const RxvtEnd& end : RXVT_ENDS)
        Add(keys, key.virtualKey, end.controlKeys, "\x1b[%d%c", number, end.end);
    for (int modifier = FIRST_MODIFIER; modifier <= LAST_MODIFIER; ++modifier)
        Add(keys, key.virtualKey, ControlKeysOf(modifier), "\x1b[%d;%d~", number, modifier);
}

void AddLetter(CConsoleKeys& keys, const KeyOfFamilies& key) {
    if (key.letter == NONE)
        return;
    Add(keys, key.virtualKey, 0, "\x1b[%c", key.letter);
    Add(keys, key.virtualKey, 0, "\x1bO%c", key.letter);
    for (int modifier = FIRST_MODIFIER; modifier <= LAST_MODIFIER; ++modifier) {
        const DWORD controlKeys = ControlKeysOf(modifier);
        Add(keys, key.virtualKey, controlKeys, "\x1b[1;%d%c", modifier, key.letter);
        // As older versions of several terminals have it.
        Add(keys, key.virtualKey, controlKeys, "\x1b[%d%c", modifier, key.letter);
        Add(keys, key.virtualKey, controlKeys, "\x1bO%d%c", modifier, key.letter);
    }
}

void AddLetterOfOne(CConsoleKeys& keys, const KeyOfFamilies& key) {
    if (key.linuxLetter != NONE)
        Add(keys, key.virtualKey, 0, "\x1b[[%c", key.linuxLetter);
    if (key.rxvtLetter == NONE)
        return;
    Add(keys, key.virtualKey, SHIFT_PRESSED, "\x1b[%c", key.rxvtLetter);
    Add(keys, key.virtualKey, LEFT_CTRL_PRESSED, "\x1bO%c", key.rxvtLetter);
}

} // namespace

void AddKnownKeys(CConsoleKeys& keys) {
    for (const KeyOfFamilies& key : KEYS) {
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
    for (const KeyOfFamilies& key : KEYS) {
        const char* const sequence =
            unibi_get_str(entry.get(), static_cast<unibi_string>(key.terminfo));
        if (sequence != nullptr)
            keys.Add(sequence, key.virtualKey, 0);
    }
}

WORD ScanCodeOf(WORD virtualKey) {
    for (const KeyOfFamilies& key : KEYS) {
        if (key.virtualKey == virtualKey)
            return key.scanCode;
    }
    return 0;
}

} // namespace platform
