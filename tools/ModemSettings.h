// What commands can set and AT&F puts back: the switches, the numeric parameters and the
// S-registers. Plain values, owned by the modem's state; one thread at a time.
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace modemsim {

// S0 to S31; those without a factory value in V.250 and its predecessors start at 0.
inline constexpr std::size_t kRegisterCount = 32;

struct ModemSettings {
    int echo = 1;
    int verbose = 1;
    int quiet = 0;
    int progress = 4;    // ATX
    int carrier = 1;     // AT&C
    int dtr = 2;         // AT&D: what a closed device does
    int flowControl = 3; // AT&K; like the four below, kept and shown but without effect
    int dsr = 0;
    int loudness = 2;
    int speaker = 1;
    int speed = 0;

    int errorLevel = 0;                               // AT+CMEE
    int textMode = 0;                                 // AT+CMGF
    int registrationTold = 0;                         // AT+CREG
    int callerTold = 0;                               // AT+CLIP
    std::array<int, 5> indications = {2, 1, 0, 0, 0}; // AT+CNMI
    std::string characterSet = "GSM";                 // AT+CSCS

    std::array<std::uint8_t, kRegisterCount> registers = {0,  0, '+', '\r', '\n', '\b', 2,
                                                          50, 2, 6,   14,   95,   50};

    // The escape guard time; S12 counts fiftieths of a second.
    int GuardMilliseconds() const { return registers[12] * 20; }
};

} // namespace modemsim
