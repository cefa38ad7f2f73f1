// The 7-bit default alphabet of short messages (3GPP 23.038), as far as ASCII reaches. Pure
// functions, for any thread; total for any input.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace modemsim {

// The septets of a text; what the alphabet lacks becomes '?'.
std::vector<std::uint8_t> ToSeptets(std::string_view text);

// The text of septets; characters outside ASCII become '?'.
std::string FromSeptets(const std::vector<std::uint8_t>& septets);

std::vector<std::uint8_t> PackSeptets(const std::vector<std::uint8_t>& septets);

// As many septets as asked for, fewer when the octets end.
std::vector<std::uint8_t> UnpackSeptets(const std::vector<std::uint8_t>& octets, std::size_t count);

} // namespace modemsim
