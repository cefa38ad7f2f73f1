// The program's own lines on standard error. Any thread may tell; nothing can fail.
#pragma once

#include <string>
#include <string_view>

// Tells the user one thing as a line that begins with "wirelet: ", if the message does not, and is
// made printable; messages have no full stop. On a terminal the line is broken between words where
// it would be cut.
void TellOnStandardError(std::string_view message);

// The text with line ends in place of blanks, so that no line has more than so many columns, but
// for longer words. 0 columns: as it is.
std::string BreakBetweenWords(std::string_view text, std::size_t columns);
