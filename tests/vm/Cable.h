// The serial devices of the guest, each with the far end of its cable, and the host, which has the
// chips and the plugs in its hands.
#pragma once

#include <gtest/gtest.h>
#include <string>

struct Cable {
    const char* name; // as the host knows the chip
    const char* device;
    const char* farEnd;

    bool operator==(const Cable& other) const { return std::string_view(name) == other.name; }
};

inline constexpr Cable kAdapter = {"adapter", "/dev/ttyUSB0", "/dev/vport0p3"}; // ftdi_sio
inline constexpr Cable kUart = {"uart", "/dev/ttyS1", "/dev/vport0p4"};         // 8250
inline constexpr Cable kAcm = {"acm", "/dev/ttyACM0", "/dev/ttyGS0"};           // cdc_acm

// The cable of the sessions, which the environment names in WIRELET_CABLE.
const Cable& SessionCable();

// Takes the adapter or the ACM away, and brings it back; returns when it is there.
void Unplug(const Cable& cable);
void Plug(const Cable& cable);

// Has the host do something, over the control line, and returns its answer, a line:
//   plug, unplug    the USB adapter; "done"
//   break           on the UART's line; "done"
//   settings CHIP   what is in place in the chip, such as "19200 7E1 - DTR RTS": the speed, the
//                   format, what output waits for ("-", "CTS" or "XON"), and the lines that are up
//   moves CHIP      what DTR and RTS have done since last asked: "12ms -DTR 0ms -RTS"
// CHIP is the name of the adapter or the UART.
std::string AskHost(const std::string& command);

inline std::ostream& operator<<(std::ostream& stream, const Cable& cable) {
    return stream << cable.name;
}
inline std::string NameOfCable(const testing::TestParamInfo<Cable>& info) {
    return info.param.name;
}
