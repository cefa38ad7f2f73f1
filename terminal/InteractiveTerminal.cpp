// Each turn waits for all that it could serve now, and for nothing else: keys while there is room
// for what is typed, the device while the console takes output, room in the transmit buffer while
// something waits for it. So neither side stops the other, and no turn begins in vain.
#include "terminal/InteractiveTerminal.h"

#include "modem/Modem.h"
#include "platform/Wait.h"
#include "platform/objects/Deadline.h"
#include "platform/objects/EndRequest.h"
#include "terminal/ModuleNotices.h"
#include "terminal/TermConsole.h"
#include "terminal/UserMessage.h"

namespace {

// Echo on, verbal result codes.
constexpr char kInitialisation[] = "ATE1V1\r";

// Bytes typed ahead of a device that does not take them. Keys are taken all the same, so that a
// paste into a stuck device leaves the keys that end the terminal within reach.
constexpr std::size_t kMostTypedAhead = std::size_t{4} << 20;

// Keys taken in one turn: a paste must not keep the device's output from the screen.
constexpr int kKeysPerTurn = 1024;

constexpr DWORD kReadSize = 256;
// Reads of one turn: 4096 bytes, so that a key never waits for more than that to be shown.
constexpr int kReadsPerTurn = 16;

// With the input at its end, the device must have been silent this long before the terminal ends.
constexpr DWORD kQuietTime = 1000;

// At the end, how long the device may take no byte before the rest of what was typed is given up,
// and how long that may go on before the user is told.
constexpr DWORD kStuckTime = 2000;
constexpr DWORD kPatience = 1000;

// Quiet times in which the device takes no byte of what was typed before the rest is given up.
constexpr int kStuckTurns = 2;

} // namespace

CInteractiveTerminal::CInteractiveTerminal(CVModem& modem, CTermConsole& console,
                                           const std::string& deviceName)
    : m_modem(modem), m_console(console), m_strDeviceName(deviceName) {}

void CInteractiveTerminal::Run() {
    m_modem.Write(kInitialisation, sizeof(kInitialisation) - 1);
    while (m_console.m_bActive && !m_bDeviceGone)
        Turn();
    if (!m_bDeviceGone)
        FinishTyping();
    if (m_bDeviceGone)
        TellDeviceGone(m_console, m_strDeviceName);
}

CInteractiveTerminal::Waits CInteractiveTerminal::ChooseWaits() const {
    Waits waits;
    waits.Add(m_console.GetReleaseEvent());
    if (const HANDLE news = GetModuleNewsEvent())
        waits.news = waits.Add(news);
    if (!m_console.IsInputEnded() && m_console.GetTypedAhead() < kMostTypedAhead)
        waits.keys = waits.Add(m_console.GetInputHandle());
    if (m_console.GetTypedAhead() != 0)
        waits.Add(m_modem.GetProgressEvent());
    if (WaitForSingleObject(m_console.GetOutputHandle(), 0) == WAIT_OBJECT_0)
        waits.device = waits.Add(m_modem.GetReceiveHandle());
    else
        waits.Add(m_console.GetOutputHandle());
    return waits;
}

void CInteractiveTerminal::Turn() {
    const Waits waits = ChooseWaits();
    // A device that is not read, because nobody takes what it said, is not silent.
    const bool isRead = waits.device != Waits::kNone;
    const DWORD timeout = m_console.IsInputEnded() && isRead ? kQuietTime : INFINITE;
    const DWORD signalled =
        WaitForMultipleObjects(waits.count, waits.handles.data(), FALSE, timeout);
    if (signalled == WAIT_TIMEOUT)
        return EndWhenQuiet();
    if (signalled == WAIT_FAILED) {
        m_bDeviceGone = true;
        return;
    }

    if (signalled == waits.news)
        TellUser(m_console, "\n" + TakeModuleNews());
    if (signalled == waits.keys)
        TakeKeys();
    m_console.SendTyped();
    if (waits.device == Waits::kNone || !m_console.m_bActive)
        return;
    // During a paste, the keys always come first among the signalled.
    if (!ShowReceived())
        m_bDeviceGone = m_modem.IsDeviceGone();
    // Nobody would see what the device says from now on.
    if (m_console.IsOutputGone())
        m_console.Restore();
}

void CInteractiveTerminal::TakeKeys() {
    for (int keys = 0; keys < kKeysPerTurn; ++keys) {
        BYTE key = 0;
        if (m_console.ReadKey(&key))
            m_console.TypeChar(key);
        if (!m_console.m_bActive || m_console.IsInputEnded() || !m_console.WaitForInput(0))
            break;
    }
}

bool CInteractiveTerminal::ShowReceived() {
    std::array<BYTE, kReadSize> bytes;
    DWORD count = 0;
    for (int reads = 0; reads < kReadsPerTurn; ++reads) {
        if (!m_modem.Read(bytes.data(), kReadSize, count))
            return reads > 0;
        m_console.PutText({bytes.data(), count});
        if (count < kReadSize)
            break;
    }
    return true;
}

std::size_t CInteractiveTerminal::CountUnsent() const {
    return m_modem.GetQueuedOutput() + m_console.GetTypedAhead();
}

// The device is read on meanwhile, or one that echoes would take nothing either.
void CInteractiveTerminal::FinishTyping() {
    const platform::CDeadline patience(kPatience);
    platform::CDeadline stuck(kStuckTime);
    std::size_t unsent = CountUnsent();
    bool isTold = false;
    for (m_console.SendTyped(); m_console.GetTypedAhead() != 0; m_console.SendTyped()) {
        if (!isTold && !platform::IsEndRequested() && patience.Remaining() == 0) {
            TellUser(m_console,
                     "wirelet: sending what was typed before the end; Ctrl+C drops it\n");
            isTold = true;
        }
        const std::array<HANDLE, 2> handles = {m_modem.GetProgressEvent(),
                                               m_modem.GetReceiveHandle()};
        const DWORD signalled = WaitForMultipleObjects(2, handles.data(), FALSE, stuck.Remaining());
        if (signalled != WAIT_OBJECT_0 && signalled != WAIT_OBJECT_0 + 1)
            return;
        if (!ShowReceived() && m_modem.IsDeviceGone()) {
            m_bDeviceGone = true;
            return;
        }
        if (CountUnsent() < unsent)
            stuck = platform::CDeadline(kStuckTime);
        unsent = CountUnsent();
    }
}

void CInteractiveTerminal::EndWhenQuiet() {
    const std::size_t queued = CountUnsent();
    m_nQuietTurns = queued < m_nQueuedOutput ? 0 : m_nQuietTurns + 1;
    m_nQueuedOutput = queued;
    if (queued == 0 || m_nQuietTurns >= kStuckTurns)
        m_console.Restore();
}
