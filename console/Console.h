// The console: the user's terminal as a screen and a keyboard.
//
// One thread, the one that calls SetConsoleMode with 0, takes the console over and is the only one
// to use it from then on. Control handlers are called on that thread, while it waits. The handles
// are those of GetStdHandle; other handles give FALSE with ERROR_INVALID_HANDLE.
//
// Output is processed: CR, LF (to the first column of the next line), BS, TAB and BEL act, every
// other control character and every byte that is no UTF-8 is drawn as the picture that code page
// 437 has for it. Text goes out in the character set of the user's locale, what that lacks as "?".
// No byte that is written ever reaches the terminal as a control function. Output
// is gathered and goes out when the thread next has to wait, when 64 KiB have gathered, and before
// the console is given back; writing blocks only while the terminal holds back more than that. The
// cursor is known without asking the terminal. When standard output is no terminal, text goes out
// plain: control sequences are left out, and CR LF becomes LF.
//
// Keys arrive as the bytes typed, one record a byte, with a repeat count of 0 for those that belong
// to the character before them; the arrow, paging, Insert, Delete and function keys are recognised
// as xterm, the Linux console, screen, tmux, rxvt and the VT220 send them and as the terminal's
// terminfo entry has them. Every other key that the terminal sends a control sequence for is one
// record with a key code that nothing is done for. Backspace is the terminal's own erase character
// and arrives as 8; with Alt a key carries its character. A lone ESC becomes a key after 100 ms, a
// sequence without its end after half a second without a byte. What is pasted counts as typed.
//
// When standard input is no terminal its bytes are the keys, as they are; only the sequences of the
// named keys are recognised.
//
// In the background of a shell the terminal's modes are left alone. Output is drawn there all the
// same; a wait for a key stops the process (SIGTTIN). The terminal is taken over once the process
// is in the foreground.
#pragma once

#include "platform/Types.h"

#include <string>

inline constexpr DWORD STD_INPUT_HANDLE = 0xFFFFFFF6;
inline constexpr DWORD STD_OUTPUT_HANDLE = 0xFFFFFFF5;

struct COORD {
    SHORT X;
    SHORT Y;
};

struct SMALL_RECT {
    SHORT Left;
    SHORT Top;
    SHORT Right;
    SHORT Bottom;
};

struct CONSOLE_SCREEN_BUFFER_INFO {
    COORD dwSize;
    COORD dwCursorPosition;
    WORD wAttributes;
    SMALL_RECT srWindow;
    COORD dwMaximumWindowSize;
};

inline constexpr WORD KEY_EVENT = 0x0001;
inline constexpr WORD WINDOW_BUFFER_SIZE_EVENT = 0x0004;
inline constexpr WORD MENU_EVENT = 0x0008;

inline constexpr DWORD RIGHT_ALT_PRESSED = 0x0001;
inline constexpr DWORD LEFT_ALT_PRESSED = 0x0002;
inline constexpr DWORD LEFT_CTRL_PRESSED = 0x0008;
inline constexpr DWORD SHIFT_PRESSED = 0x0010;

inline constexpr WORD VK_PRIOR = 0x21;
inline constexpr WORD VK_NEXT = 0x22;
inline constexpr WORD VK_END = 0x23;
inline constexpr WORD VK_HOME = 0x24;
inline constexpr WORD VK_LEFT = 0x25;
inline constexpr WORD VK_UP = 0x26;
inline constexpr WORD VK_RIGHT = 0x27;
inline constexpr WORD VK_DOWN = 0x28;
inline constexpr WORD VK_INSERT = 0x2D;
inline constexpr WORD VK_DELETE = 0x2E;
inline constexpr WORD VK_F1 = 0x70;
inline constexpr WORD VK_F2 = 0x71;
inline constexpr WORD VK_F3 = 0x72;
inline constexpr WORD VK_F4 = 0x73;
inline constexpr WORD VK_F5 = 0x74;
inline constexpr WORD VK_F6 = 0x75;

struct KEY_EVENT_RECORD {
    BOOL bKeyDown;
    WORD wRepeatCount; // 0: another byte of the same character
    WORD wVirtualKeyCode;
    WORD wVirtualScanCode; // always 0: a terminal tells none
    union {
        char AsciiChar;
    } uChar;
    DWORD dwControlKeyState;
};

struct INPUT_RECORD {
    WORD EventType;
    union {
        KEY_EVENT_RECORD KeyEvent;
    } Event;
};

inline constexpr DWORD CTRL_C_EVENT = 0;
inline constexpr DWORD CTRL_BREAK_EVENT = 1;
inline constexpr DWORD CTRL_CLOSE_EVENT = 2;
inline constexpr DWORD CTRL_LOGOFF_EVENT = 5;
inline constexpr DWORD CTRL_SHUTDOWN_EVENT = 6;

// Bits of an attribute beside its colours.
inline constexpr WORD EXACT_FOREGROUND = 0x0100;
inline constexpr WORD EXACT_BACKGROUND = 0x0200;

using PHANDLER_ROUTINE = BOOL (*)(DWORD dwCtrlType);

// The handle of standard input or output; it needs no closing. INVALID_HANDLE_VALUE with
// ERROR_INVALID_HANDLE for another number.
HANDLE GetStdHandle(DWORD nStdHandle);

// The mode of the input: 0 while the console is taken over, else a value that only SetConsoleMode
// understands.
BOOL GetConsoleMode(HANDLE hConsoleHandle, LPDWORD lpMode);

// Mode 0 on the input takes the console over: raw keys, no echo; Ctrl+C, Ctrl+Z, Ctrl+S and Ctrl+Q
// are keys, Ctrl+\ is the break signal; what was typed before and nobody has read comes first, its
// Enter as CR too. From now on whatever ends the process, a crash included, leaves the terminal
// sane. The saved mode gives the console back: gathered output goes out (as long as the terminal
// takes it, at most 2 s without progress, 1 s once the end of the program was asked for),
// attributes and title return, the cursor stands below the text.
BOOL SetConsoleMode(HANDLE hConsoleHandle, DWORD dwMode);

// Adds (TRUE) or removes (FALSE) the control handler; there is room for one, a second add fails
// with ERROR_NOT_ENOUGH_MEMORY. While one is there, Ctrl+\ (SIGQUIT) is CTRL_BREAK_EVENT, SIGHUP is
// CTRL_CLOSE_EVENT, SIGTERM is CTRL_SHUTDOWN_EVENT, SIGINT is CTRL_C_EVENT (CTRL_BREAK_EVENT when
// standard input is no terminal, since Ctrl+C is no key then); with none, signals have their usual
// effect. Each control event also becomes a MENU_EVENT record, so that a wait for the input ends;
// so does a change of the terminal's size as a WINDOW_BUFFER_SIZE_EVENT.
BOOL SetConsoleCtrlHandler(PHANDLER_ROUTINE HandlerRoutine, BOOL Add);

// The title of the terminal's window, control characters left out. TRUE also where the terminal has
// none.
BOOL SetConsoleTitleA(LPCSTR lpConsoleTitle);

// Takes the next input record; blocks until there is one. FALSE with ERROR_HANDLE_EOF at the end of
// the input.
BOOL ReadConsoleInputA(HANDLE hConsoleInput, INPUT_RECORD* lpBuffer, DWORD nLength,
                       LPDWORD lpNumberOfEventsRead);

// Writes bytes, processed as above. TRUE and the count; FALSE with ERROR_WRITE_FAULT once the
// terminal is gone (the bytes are then dropped).
BOOL WriteConsoleA(HANDLE hConsoleOutput, LPCVOID lpBuffer, DWORD nNumberOfCharsToWrite,
                   LPDWORD lpNumberOfCharsWritten, LPVOID lpReserved);

// Size, cursor (at the right edge: the last column), attribute. The window is the whole terminal,
// 80 by 25 when there is none; a size change of the terminal shows at once. FALSE when standard
// output is no terminal.
BOOL GetConsoleScreenBufferInfo(HANDLE hConsoleOutput, CONSOLE_SCREEN_BUFFER_INFO* lpInfo);

// FALSE with ERROR_INVALID_PARAMETER for a position outside of the window; the cursor then stays.
BOOL SetConsoleCursorPosition(HANDLE hConsoleOutput, COORD dwCursorPosition);

// The terminal keeps its own size: TRUE without effect for a rectangle that begins at or beyond the
// top left corner, else ERROR_INVALID_PARAMETER.
BOOL SetConsoleWindowInfo(HANDLE hConsoleOutput, BOOL bAbsolute, const SMALL_RECT* lpConsoleWindow);

// Fills cells with a character, left to right and on to the next rows, then, with the second call
// for the same cells, gives them an attribute; the cursor stays. The first fill of the whole window
// after the console was taken over moves what was on the screen into the scrollback. The second
// call fails with ERROR_NOT_SUPPORTED for cells other than those just filled.
BOOL FillConsoleOutputCharacterA(HANDLE hConsoleOutput, char cCharacter, DWORD nLength,
                                 COORD dwWriteCoord, LPDWORD lpNumberOfCharsWritten);
BOOL FillConsoleOutputAttribute(HANDLE hConsoleOutput, WORD wAttribute, DWORD nLength,
                                COORD dwWriteCoord, LPDWORD lpNumberOfAttrsWritten);

// The attribute of text written from now on: background * 16 + foreground, four bits each (1 blue,
// 2 green, 4 red, 8 bright). Foreground 7 and background 0 are the terminal's own colours, and
// foreground 15 is its own one in bold, but where the EXACT bit tells that the colour is meant.
BOOL SetConsoleTextAttribute(HANDLE hConsoleOutput, WORD wAttributes);

namespace platform {

// Whether the console's input or output is a terminal, and one that has not been hung up.
bool HasTerminal();

// Whether some of what was written to the console's output is lost: it failed (a full disk, a
// closed pipe), or took nothing for too long when it was given back.
bool IsOutputLost();

// From now on, until the process ends, SIGINT, SIGQUIT, SIGHUP and SIGTERM ask for the end of the
// program (platform/objects/EndRequest.h) when they come while the console is given back, in place
// of ending the process at once. Those that were ignored stay so. Called while the console is taken
// over.
void EndOnSignals();

// Ends the process by the last of these signals that came; returns when none has.
void EndBySignal();

} // namespace platform
