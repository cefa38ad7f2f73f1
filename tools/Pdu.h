// Short messages as the radio network writes them, in hexadecimal: enough of 3GPP 23.040 to show a
// text message in PDU mode and to read what an opener sends in it. Pure functions, for any thread;
// total for any input.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace modemsim {

// Characters of one message in the 7-bit alphabet.
inline constexpr std::size_t kMessageTextLimit = 160;

struct Pdu {
    std::string hex; // begins with an empty service centre, "00"
    int length = 0;  // octets without the service centre, as +CMGL and +CMGS count them
};

struct DecodedPdu {
    std::string number;
    std::string text;
    int length = 0; // octets without the service centre
};

// A message that came in, with its time (seconds since 1970, UTC). Characters outside ASCII become
// '?', text past messageTextLimit is cut.
Pdu EncodeDeliver(std::string_view number, std::string_view text, std::int64_t seconds);

// A message on its way out.
Pdu EncodeSubmit(std::string_view number, std::string_view text);

// Reads a message on its way out. Text in another alphabet than the 7-bit one is given as
// hexadecimal. Nothing when the digits are no such message.
std::optional<DecodedPdu> DecodeSubmit(std::string_view hex);

} // namespace modemsim
