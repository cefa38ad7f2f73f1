// Only what the DCB and the kernel both know is carried over; the rest of a DCB is refused instead
// of being left out without a word. Drivers replace what they cannot do just as silently, for which
// AreSettingsTaken looks afterwards.
#include "platform/comm/CommSettings.h"

#include <algorithm>
#include <iterator>

namespace platform {
namespace {

struct ParityFlags {
    BYTE parity;
    tcflag_t flags;
};

// With CMSPAR the parity bit is constant: PARODD makes it a mark, otherwise it is a space.
constexpr ParityFlags kParities[] = {
    {NOPARITY, 0},
    {ODDPARITY, PARENB | PARODD},
    {EVENPARITY, PARENB},
    {MARKPARITY, PARENB | PARODD | CMSPAR},
    {SPACEPARITY, PARENB | CMSPAR},
};

constexpr tcflag_t kParityMask = PARENB | PARODD | CMSPAR;
constexpr tcflag_t kFormatMask = CSIZE | CSTOPB | kParityMask;
constexpr tcflag_t kSoftwareFlow = IXON | IXOFF;

constexpr BYTE kSmallestByteSize = 5;
constexpr tcflag_t kByteSizes[] = {CS5, CS6, CS7, CS8};

// The characters that nearly every device knows as XON and XOFF (DC1, DC3).
constexpr char kUsualXon = 0x11;
constexpr char kUsualXoff = 0x13;

// Receivers sample in the middle of a bit: ten bits long, a byte tolerates about 5 % in all, and
// the other side needs its share.
constexpr std::uint64_t kSpeedTolerancePercent = 3;

tcflag_t ParityOf(tcflag_t controlFlags) {
    return (controlFlags & PARENB) ? controlFlags & kParityMask : 0;
}

tcflag_t FormatOf(tcflag_t controlFlags) {
    return (controlFlags & (CSIZE | CSTOPB)) | ParityOf(controlFlags);
}

bool IsSpeedTaken(speed_t asked, speed_t inPlace) {
    const std::uint64_t difference = asked > inPlace ? asked - inPlace : inPlace - asked;
    return difference * 100 <= kSpeedTolerancePercent * asked;
}

// CSTOPB is one and a half stop bits with 5 data bits and two with more.
bool HasStopBits(BYTE byteSize, BYTE stopBits) {
    if (stopBits == ONESTOPBIT)
        return true;
    return stopBits == (byteSize == kSmallestByteSize ? ONE5STOPBITS : TWOSTOPBITS);
}

// The kernel couples RTS and CTS flow control, and knows no flow control by DSR and DTR, no
// characters in place of damaged ones, and no discarding of NUL.
bool IsFlowKnown(const DCB& dcb) {
    if (dcb.fOutxDsrFlow || dcb.fDsrSensitivity || dcb.fErrorChar || dcb.fNull || dcb.fAbortOnError)
        return false;
    if (dcb.fDtrControl > DTR_CONTROL_ENABLE || dcb.fRtsControl > RTS_CONTROL_HANDSHAKE)
        return false;
    return (dcb.fRtsControl == RTS_CONTROL_HANDSHAKE) == (dcb.fOutxCtsFlow != 0);
}

// The kernel takes NUL for "no character", so a NUL stands for the usual one here.
cc_t FlowCharacter(char wanted, char usual) {
    return static_cast<cc_t>(wanted ? wanted : usual);
}

} // namespace

void MakeRaw(termios2& settings) {
    // A terminal in line mode has the kernel's own start values, XON/XOFF among them, which nobody
    // chose for this device.
    if (settings.c_lflag & ICANON)
        settings.c_iflag &= ~kSoftwareFlow;
    settings.c_iflag &= kSoftwareFlow;
    // A received break and an overrun are counted by the driver and add no byte: with BRKINT, the
    // kernel looks at the marks that drivers put on the NULs for them. The signal that BRKINT is
    // for finds nobody, as no process is controlled by the port; NOFLSH keeps what was received
    // before it.
    settings.c_iflag |= BRKINT;
    settings.c_oflag &= ~static_cast<tcflag_t>(OPOST);
    settings.c_lflag = NOFLSH;
    settings.c_cflag |= CLOCAL | CREAD;
    // A read that gives 0 bytes then means a hang-up and nothing else.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
}

DCB DcbOfSettings(const termios2& settings) {
    const tcflag_t flags = settings.c_cflag;
    const auto size = std::find(std::begin(kByteSizes), std::end(kByteSizes), flags & CSIZE);
    const auto parity =
        std::find_if(std::begin(kParities), std::end(kParities),
                     [&](const ParityFlags& row) { return row.flags == ParityOf(flags); });
    const bool hardwareFlow = (flags & CRTSCTS) != 0;

    DCB dcb{};
    dcb.DCBlength = sizeof(DCB);
    dcb.BaudRate = settings.c_ospeed;
    dcb.fBinary = 1;
    dcb.fParity = parity->parity != NOPARITY;
    dcb.fOutxCtsFlow = hardwareFlow;
    dcb.fDtrControl = DTR_CONTROL_ENABLE;
    dcb.fRtsControl = RTS_CONTROL_ENABLE;
    if (hardwareFlow)
        dcb.fRtsControl = RTS_CONTROL_HANDSHAKE;
    dcb.fTXContinueOnXoff = 1;
    dcb.fOutX = (settings.c_iflag & IXON) != 0;
    dcb.fInX = (settings.c_iflag & IXOFF) != 0;
    dcb.ByteSize = static_cast<BYTE>(kSmallestByteSize + (size - std::begin(kByteSizes)));
    dcb.Parity = parity->parity;
    if (flags & CSTOPB)
        dcb.StopBits = dcb.ByteSize == kSmallestByteSize ? ONE5STOPBITS : TWOSTOPBITS;
    dcb.XonChar = static_cast<char>(settings.c_cc[VSTART]);
    dcb.XoffChar = static_cast<char>(settings.c_cc[VSTOP]);
    return dcb;
}

bool ApplyDcb(const DCB& dcb, termios2& settings) {
    const std::size_t size = static_cast<std::size_t>(dcb.ByteSize) - kSmallestByteSize;
    const auto parity =
        std::find_if(std::begin(kParities), std::end(kParities),
                     [&](const ParityFlags& row) { return row.parity == dcb.Parity; });
    // Speed 0 would drop DTR.
    if (dcb.BaudRate == 0 || dcb.ByteSize < kSmallestByteSize || size >= std::size(kByteSizes) ||
        parity == std::end(kParities))
        return false;
    if (!HasStopBits(dcb.ByteSize, dcb.StopBits) || !IsFlowKnown(dcb))
        return false;

    settings.c_cflag &= ~(kFormatMask | CRTSCTS | CBAUD | static_cast<tcflag_t>(CIBAUD));
    settings.c_cflag |= BOTHER | kByteSizes[size] | parity->flags;
    if (dcb.StopBits != ONESTOPBIT)
        settings.c_cflag |= CSTOPB;
    if (dcb.fOutxCtsFlow)
        settings.c_cflag |= CRTSCTS;
    settings.c_ispeed = dcb.BaudRate;
    settings.c_ospeed = dcb.BaudRate;

    settings.c_iflag &= ~kSoftwareFlow;
    if (dcb.fOutX)
        settings.c_iflag |= IXON;
    if (dcb.fInX)
        settings.c_iflag |= IXOFF;
    if (dcb.fOutX || dcb.fInX) {
        settings.c_cc[VSTART] = FlowCharacter(dcb.XonChar, kUsualXon);
        settings.c_cc[VSTOP] = FlowCharacter(dcb.XoffChar, kUsualXoff);
    }
    return true;
}

bool AreSettingsTaken(const termios2& asked, const termios2& inPlace, bool pseudoTerminal) {
    if (!IsSpeedTaken(asked.c_ospeed, inPlace.c_ospeed))
        return false;
    if ((asked.c_cflag & CRTSCTS) != (inPlace.c_cflag & CRTSCTS) ||
        (asked.c_iflag & kSoftwareFlow) != (inPlace.c_iflag & kSoftwareFlow))
        return false;
    return pseudoTerminal || FormatOf(asked.c_cflag) == FormatOf(inPlace.c_cflag);
}

} // namespace platform
