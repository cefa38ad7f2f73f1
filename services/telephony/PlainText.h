// Texts from files and devices that a user can be shown and can type. Pure functions.
#pragma once

#include <string>
#include <string_view>

namespace telephonyservice {

// Whether the text is UTF-8 of characters that the program shows as they are, or leaves out.
bool IsPlainText(std::string_view text);

// The text as the program shows it, with a '?' for each byte that it refuses, cut between
// characters to at most limit bytes.
std::string MakePlainText(std::string_view text, std::size_t limit);

// Without the blanks and tabs at both ends.
std::string_view Trim(std::string_view text);

} // namespace telephonyservice
