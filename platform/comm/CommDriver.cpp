// A call that fails says little by its error number: EIO comes from a device that is gone as well
// as from an adapter that stumbled over one question. So poll() is asked too before a device counts
// as gone. What a driver lacks (lines, counters) is found out by the first call that says so, and
// is no failure.
#include "platform/comm/CommDriver.h"

#include "platform/Error.h"
#include "platform/comm/CommClose.h"
#include "platform/comm/CommErrors.h"
#include "platform/terminal/TerminalDevice.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>

namespace platform {
namespace {

constexpr int kOpenFlags = O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC;

bool IsLoss(int systemError) {
    return systemError == EIO || systemError == ENXIO || systemError == ENODEV ||
           systemError == EPIPE;
}

BOOL FailOpen(int systemError) {
    return FailWith(IsLoss(systemError) ? ERROR_DEVICE_NOT_CONNECTED : ErrorFromErrno(systemError));
}

bool IsSenderHeld(const DCB& dcb) {
    return dcb.fRtsControl == RTS_CONTROL_HANDSHAKE || dcb.fInX;
}

int AtMostInt(DWORD count) {
    return static_cast<int>(std::min<DWORD>(count, INT_MAX));
}

} // namespace

CCommDriver::~CCommDriver() {
    Release();
    if (m_bStuck)
        CloseWithoutWaiting(m_descriptor);
}

BOOL CCommDriver::Open(LPCSTR path) {
    if (!OpenDevice(path) || !MakeExclusive())
        return FALSE;
    // A device node without hardware behind it opens, but answers no question.
    if (ioctl(m_descriptor.Get(), TCGETS2, &m_found) != 0)
        return FailWith(IsLoss(errno) ? ERROR_DEVICE_NOT_CONNECTED : ERROR_NOT_SUPPORTED);

    // A pseudo-terminal lives on with its other end, and the exclusive use of an opener that was
    // killed with it; only root would get past that.
    if (!m_bPseudoTerminal)
        ioctl(m_descriptor.Get(), TIOCEXCL);
    m_bHeld = true;
    termios2 raw = m_found;
    MakeRaw(raw);
    if (ioctl(m_descriptor.Get(), TCSETS2, &raw) != 0) {
        const int systemError = errno;
        Release();
        return FailOpen(systemError);
    }
    m_dwRTSControl = DcbOfSettings(raw).fRtsControl;
    m_bHoldsSender = IsSenderHeld(DcbOfSettings(raw));
    // Errors that were counted before are not this port's.
    DWORD formerErrors = 0;
    TakeErrors(formerErrors);
    return IsGone() ? FailWith(ERROR_DEVICE_NOT_CONNECTED) : TRUE;
}

// Looks before it opens: opening alone has effects on some devices that are no terminals.
BOOL CCommDriver::OpenDevice(LPCSTR path) {
    struct stat status {};
    if (stat(path, &status) != 0)
        return FailOpen(errno);
    if (S_ISDIR(status.st_mode))
        return FailWith(ERROR_ACCESS_DENIED);
    if (!S_ISCHR(status.st_mode))
        return FailWith(ERROR_NOT_SUPPORTED);
    if (IsOwnTerminal(status))
        return FailWith(ERROR_ACCESS_DENIED);

    do
        m_descriptor.Reset(open(path, kOpenFlags));
    while (!m_descriptor && errno == EINTR);
    if (!m_descriptor || fstat(m_descriptor.Get(), &status) != 0)
        return FailOpen(errno);
    m_bPseudoTerminal = IsPseudoTerminal(status.st_rdev);
    return TRUE;
}

// TIOCEXCL keeps out everybody but root, and only those who come later.
BOOL CCommDriver::MakeExclusive() {
    if (flock(m_descriptor.Get(), LOCK_EX | LOCK_NB) == 0)
        return TRUE;
    return errno == EWOULDBLOCK ? FailWith(ERROR_ACCESS_DENIED) : FailOpen(errno);
}

BOOL CCommDriver::Release() {
    const std::lock_guard lock(m_settingsMutex);
    if (!m_bHeld)
        return TRUE;
    m_bHeld = false;
    // Closing waits up to half a minute for output that the other side holds back.
    Flush(TCOFLUSH);
    DWORD left = 0;
    m_bStuck = !m_bPseudoTerminal && CountOutput(left) && left > 0;
    const BOOL restored = Call(TCSETS2, &m_found) || IsGone();
    if (!m_bPseudoTerminal)
        ioctl(m_descriptor.Get(), TIOCNXCL);
    flock(m_descriptor.Get(), LOCK_UN);
    return restored;
}

BOOL CCommDriver::HangsUp() const {
    pollfd polled = {m_descriptor.Get(), 0, 0};
    return poll(&polled, 1, 0) > 0 && (polled.revents & (POLLHUP | POLLERR)) != 0;
}

int CCommDriver::Receive(void* buffer, DWORD count) {
    ssize_t received;
    do
        received = read(m_descriptor.Get(), buffer, static_cast<std::size_t>(AtMostInt(count)));
    while (received < 0 && errno == EINTR);
    if (received > 0)
        return static_cast<int>(received);
    if (received < 0 && errno == EAGAIN)
        return 0;
    // 0 bytes are the end, unless another program has changed the settings under this one.
    const bool isGone = received == 0 ? count > 0 && HangsUp() : IsLoss(errno);
    if (isGone)
        SetGone();
    else if (received == 0)
        return 0;
    SetLastError(isGone ? ERROR_DEVICE_NOT_CONNECTED : ERROR_GEN_FAILURE);
    return -1;
}

int CCommDriver::Send(const void* buffer, DWORD count) {
    ssize_t sent;
    do
        sent = write(m_descriptor.Get(), buffer, static_cast<std::size_t>(AtMostInt(count)));
    while (sent < 0 && errno == EINTR);
    if (sent >= 0)
        return static_cast<int>(sent);
    if (errno == EAGAIN)
        return 0;
    const bool isGone = IsLoss(errno);
    if (isGone)
        SetGone();
    SetLastError(isGone ? ERROR_DEVICE_NOT_CONNECTED : ERROR_GEN_FAILURE);
    return -1;
}

// A USB adapter that stumbles over one question answers EIO too, and is still there.
BOOL CCommDriver::FailCall(int systemError) {
    if (systemError != ENXIO && systemError != ENODEV && !HangsUp())
        return FailWith(ERROR_GEN_FAILURE);
    SetGone();
    return FailWith(ERROR_DEVICE_NOT_CONNECTED);
}

BOOL CCommDriver::Call(unsigned long request, void* argument) {
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    if (ioctl(m_descriptor.Get(), request, argument) == 0)
        return TRUE;
    return FailCall(errno);
}

// For what not every driver has: its absence is remembered, is no failure, and leaves the argument
// as it is.
BOOL CCommDriver::CallIfOffered(std::atomic<bool>& offered, unsigned long request, void* argument) {
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    if (!offered || ioctl(m_descriptor.Get(), request, argument) == 0)
        return TRUE;
    if (errno != ENOTTY && errno != EINVAL)
        return FailCall(errno);
    offered = false;
    return TRUE;
}

BOOL CCommDriver::CountInput(DWORD& count) {
    int waiting = 0;
    if (!Call(TIOCINQ, &waiting))
        return FALSE;
    count = static_cast<DWORD>(std::max(waiting, 0));
    return TRUE;
}

BOOL CCommDriver::CountOutput(DWORD& count) {
    int waiting = 0;
    if (!Call(TIOCOUTQ, &waiting))
        return FALSE;
    count = static_cast<DWORD>(std::max(waiting, 0));
    return TRUE;
}

BOOL CCommDriver::Flush(int queue) {
    if (IsGone())
        return FailWith(ERROR_DEVICE_NOT_CONNECTED);
    // A pseudo-terminal has no output queue: what it took is the other end's input already, and
    // discarding it there would lose what counts as sent.
    if (m_bPseudoTerminal && queue == TCOFLUSH)
        return TRUE;
    return ioctl(m_descriptor.Get(), TCFLSH, queue) == 0 ? TRUE : FailCall(errno);
}

BOOL CCommDriver::TakeErrors(DWORD& errors) {
    const std::lock_guard lock(m_countersMutex);
    serial_icounter_struct now = m_counters;
    if (!CallIfOffered(m_bHasCounters, TIOCGICOUNT, &now))
        return FALSE;
    errors = ErrorsBetween(m_counters, now);
    m_counters = now;
    return TRUE;
}

BOOL CCommDriver::GetLines(int& lines) {
    lines = 0;
    return CallIfOffered(m_bHasLines, TIOCMGET, &lines);
}

BOOL CCommDriver::SetLines(int lines, bool on) {
    return CallIfOffered(m_bHasLines, on ? TIOCMBIS : TIOCMBIC, &lines);
}

BOOL CCommDriver::GetState(DCB& dcb) {
    const std::lock_guard lock(m_settingsMutex);
    termios2 settings{};
    if (!Call(TCGETS2, &settings))
        return FALSE;
    dcb = DcbOfSettings(settings);
    if (m_dwDTRControl == DTR_CONTROL_DISABLE)
        dcb.fDtrControl = DTR_CONTROL_DISABLE;
    if (m_dwRTSControl == RTS_CONTROL_DISABLE && !dcb.fOutxCtsFlow)
        dcb.fRtsControl = RTS_CONTROL_DISABLE;
    return TRUE;
}

BOOL CCommDriver::SetState(const DCB& dcb) {
    const std::lock_guard lock(m_settingsMutex);
    if (!m_bHeld)
        return FailWith(ERROR_INVALID_HANDLE);
    termios2 former{};
    if (!Call(TCGETS2, &former))
        return FALSE;
    termios2 asked = former;
    if (!ApplyDcb(dcb, asked))
        return FailWith(ERROR_INVALID_PARAMETER);
    if (!Call(TCSETS2, &asked))
        return FALSE;
    termios2 inPlace{};
    if (!Call(TCGETS2, &inPlace))
        return FALSE;
    if (!AreSettingsTaken(asked, inPlace, m_bPseudoTerminal))
        return Call(TCSETS2, &former) && FailWith(ERROR_INVALID_PARAMETER);
    m_bHoldsSender = IsSenderHeld(dcb);
    return ApplyLines(dcb);
}

// A line moves only when its control changes: what EscapeCommFunction has done to it since stays.
// RTS that was under flow control may have been left low.
BOOL CCommDriver::ApplyLines(const DCB& dcb) {
    const bool isDTRMoved = dcb.fDtrControl != m_dwDTRControl;
    const bool isRTSMoved =
        dcb.fRtsControl != m_dwRTSControl && dcb.fRtsControl != RTS_CONTROL_HANDSHAKE;
    m_dwDTRControl = dcb.fDtrControl;
    m_dwRTSControl = dcb.fRtsControl;
    if (isDTRMoved && !SetLines(TIOCM_DTR, dcb.fDtrControl == DTR_CONTROL_ENABLE))
        return FALSE;
    return !isRTSMoved || SetLines(TIOCM_RTS, dcb.fRtsControl == RTS_CONTROL_ENABLE);
}

} // namespace platform
