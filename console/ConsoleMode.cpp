// Each terminal's modes are kept twice, as found and raw, and made known to the signal handlers
// only when they are complete. In the background nothing is touched: the terminal is somebody
// else's.
#include "console/ConsoleMode.h"

#include "platform/terminal/TerminalDevice.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstring>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr cc_t kCtrlBackslash = 0x1C;

bool Say(int output, const char* text) {
    return write(output, text, std::strlen(text)) > 0;
}

bool AreSameTerminal(int first, int second) {
    struct stat firstStatus {};
    struct stat secondStatus {};
    return fstat(first, &firstStatus) == 0 && fstat(second, &secondStatus) == 0 &&
           platform::AreSameTerminal(firstStatus, secondStatus);
}

termios RawInput(termios mode) {
    mode.c_iflag &= ~static_cast<tcflag_t>(IGNBRK | BRKINT | PARMRK | ISTRIP | INLCR | IGNCR |
                                           ICRNL | IXON | IXOFF);
    mode.c_lflag &= ~static_cast<tcflag_t>(ECHO | ECHONL | ICANON | IEXTEN);
    mode.c_lflag |= ISIG | NOFLSH; // a Ctrl+\ must not throw away what was typed or is to be shown
    mode.c_cflag &= ~static_cast<tcflag_t>(CSIZE | PARENB);
    mode.c_cflag |= CS8;
    mode.c_cc[VINTR] = _POSIX_VDISABLE;
    mode.c_cc[VSUSP] = _POSIX_VDISABLE;
    mode.c_cc[VQUIT] = kCtrlBackslash;
    mode.c_cc[VMIN] = 1;
    mode.c_cc[VTIME] = 0;
    return mode;
}

} // namespace

std::size_t CConsoleMode::TakeOver(int input, int output, bool drawsOnOutput) {
    m_nTerminals = 0;
    const bool same = AreSameTerminal(input, output);
    Add(input, true, drawsOnOutput && same);
    if (!same && drawsOnOutput)
        Add(output, false, true);
    return TakeAgain();
}

void CConsoleMode::Add(int descriptor, bool isInput, bool isDrawnOn) {
    if (isatty(descriptor) == 0)
        return;
    Terminal& terminal = m_terminals[m_nTerminals++];
    terminal.descriptor = descriptor;
    terminal.isInput = isInput;
    terminal.isDrawnOn = isDrawnOn;
    terminal.isFound.store(false);
}

void CConsoleMode::GiveBack() {
    if (m_nProcess.load() == 0)
        return;
    Restore();
    m_nProcess.store(0); // only now: a signal before it must find something to rescue
}

std::uint8_t CConsoleMode::EraseCharacter() const {
    constexpr cc_t kBackspace = 8;
    for (int index = 0; index < m_nTerminals; ++index) {
        const Terminal& terminal = m_terminals[index];
        const cc_t erase = terminal.found.c_cc[VERASE];
        const bool isControl = (erase < 0x20 || erase == 0x7F) && erase != _POSIX_VDISABLE;
        if (terminal.isInput && terminal.isFound && isControl)
            return erase;
    }
    return kBackspace;
}

void CConsoleMode::DiscardInput() {
    for (int index = 0; index < m_nTerminals; ++index) {
        if (m_terminals[index].isInput && IsForeground(m_terminals[index]))
            tcflush(m_terminals[index].descriptor, TCIFLUSH);
    }
}

void CConsoleMode::Restore() {
    for (int index = 0; index < m_nTerminals; ++index) {
        if (m_terminals[index].isFound && IsForeground(m_terminals[index]))
            Apply(m_terminals[index], m_terminals[index].found);
    }
}

std::size_t CConsoleMode::TakeAgain() {
    m_bInBackground = false;
    std::size_t typed = 0;
    for (int index = 0; index < m_nTerminals; ++index)
        typed += Take(m_terminals[index]);
    m_nProcess.store(getpid());
    return typed;
}

std::size_t CConsoleMode::Take(Terminal& terminal) {
    if (!IsForeground(terminal)) {
        m_bInBackground = true;
        return terminal.isInput ? kEvery : 0;
    }
    termios present{};
    if (tcgetattr(terminal.descriptor, &present) != 0)
        return 0;
    if (!terminal.isFound) {
        terminal.found = present;
        terminal.raw = terminal.isInput ? RawInput(present) : present;
        if (terminal.isDrawnOn)
            terminal.raw.c_oflag &= ~static_cast<tcflag_t>(OPOST);
        terminal.isFound.store(true); // only now: a signal must not bring back half of it
    }
    m_nProcess.store(getpid());
    Apply(terminal, terminal.raw);
    // Counted only now: a line without its Enter does not count before.
    int waiting = 0;
    if (!terminal.isInput || (present.c_iflag & ICRNL) == 0 ||
        ioctl(terminal.descriptor, FIONREAD, &waiting) != 0)
        return 0;
    return static_cast<std::size_t>(waiting);
}

bool CConsoleMode::HasComeForward() const {
    if (!m_bInBackground)
        return false;
    return std::all_of(m_terminals, m_terminals + m_nTerminals, IsForeground);
}

// A terminal that is not the process's own controlling one has no foreground.
bool CConsoleMode::IsForeground(const Terminal& terminal) {
    const pid_t group = tcgetpgrp(terminal.descriptor);
    return group < 0 || group == getpgrp();
}

// Setting a terminal's mode stops a process in the background, unless the signal is blocked; then
// it is carried out.
void CConsoleMode::Apply(const Terminal& terminal, const termios& mode) {
    sigset_t background;
    sigset_t before;
    sigemptyset(&background);
    sigaddset(&background, SIGTTOU);
    pthread_sigmask(SIG_BLOCK, &background, &before);
    while (tcsetattr(terminal.descriptor, TCSANOW, &mode) != 0 && errno == EINTR)
        continue;
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
}

void CConsoleMode::Rescue() {
    // CAN ends a sequence that was cut off; row 999 is below the last row of any terminal.
    static constexpr char kCancel[] = "\x18";
    static constexpr char kSane[] = "\x1b[0m\x1b[999;1H\r\n";
    static constexpr char kTitleBack[] = "\x1b[23;0t";

    int process = getpid();
    if (!m_nProcess.compare_exchange_strong(process, 0))
        return;
    Restore();
    const int output = m_nRescueOutput.load();
    pollfd descriptor = {output, POLLOUT, 0};
    if (output < 0 || poll(&descriptor, 1, 0) <= 0)
        return;
    const char* const parts[] = {kCancel, m_screenBack.load(), kSane,
                                 m_bTitleChanged.load() ? kTitleBack : nullptr};
    for (const char* const part : parts) {
        if (part != nullptr && !Say(output, part))
            return;
    }
}

} // namespace platform
