// The bytes that a text of a test stands for: \r, \n, \t, \e (ESC), \x00; any other character
// behind a \ is itself.
#pragma once

#include <string>

std::string Unescape(const std::string& text);
