// Telling the user something on the terminal: a message box, a beep.
//
// The box is drawn over the terminal's screen, on its alternate screen, so that what was there
// comes back untouched. On a terminal without one it is plain lines below the text, a screenful at
// a time. Where standard input or output is no terminal, and on a thread that is not the one that
// has taken the console over, caption and text go to standard error, and nothing is waited for.
// Control characters are drawn as the console draws them; nothing of a text acts on a terminal.
//
// Any thread may call these, but none may take the console over while another one's box is open.
#pragma once

#include "platform/Types.h"

inline constexpr UINT MB_OK = 0x00;
inline constexpr UINT MB_ICONEXCLAMATION = 0x30;
inline constexpr UINT MB_ICONINFORMATION = 0x40;

inline constexpr int IDOK = 1;

// Shows a text (null: an empty one) under a caption (null: "Error") with an OK button and waits
// until it is closed: by Enter, Space or Esc, by a control event, at the end of the input, when
// TerminateThread ends the thread. Of uType only the two icons count; the window has no effect.
// Always returns IDOK.
//
// Long lines are wrapped; a text that is higher than the window is scrolled with the arrow and
// paging keys, Home and End. The console is taken over meanwhile if it is not: control events go to
// the control handler as ever, which finds the box closed. Keys that were typed before stay for the
// console's next reader (at most 8 KiB of them): they do not close a box that nobody has seen.
int MessageBoxA(HWND hWnd, LPCSTR lpText, LPCSTR lpCaption, UINT uType);

// Rings the terminal's bell, in its place among the output that is gathered; uType has no effect.
// Without a terminal on standard output nothing happens. Always TRUE.
BOOL MessageBeep(UINT uType);
