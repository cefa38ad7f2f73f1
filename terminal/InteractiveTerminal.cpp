#include "terminal/InteractiveTerminal.h"

#include "modem/Modem.h"
#include "platform/Wait.h"
#include "terminal/TermConsole.h"
#include "terminal/UserMessage.h"

namespace {

// Echo on, verbal result codes.
constexpr char kInitialisation[] = "ATE1V1\r";

// The longest sequence that a key sends, in bytes: no key is taken without that much room.
constexpr DWORD kLongestKey = 3;

// Keys taken in one turn: a paste must not keep the device's output from the screen.
constexpr int kKeysPerTurn = 1024;

constexpr DWORD kReadSize = 256;
// Reads of one turn: 4096 bytes, so that a key never waits for more than that to be shown.
constexpr int kReadsPerTurn = 16;

// With the input at its end, the device must have been silent this long before the terminal ends.
constexpr DWORD kQuietTime = 1000;

// Quiet times in which the device takes no byte of what was typed before the rest is given up.
constexpr int kStuckTurns = 2;

} // namespace

CInteractiveTerminal::CInteractiveTerminal(CVModem& modem, CTermConsole& console,
                                           const std::string& deviceName)
    : m_modem(modem), m_console(console), m_deviceName(deviceName) {}

void CInteractiveTerminal::Run() {
    m_modem.Write(kInitialisation, sizeof(kInitialisation) - 1);
    while (m_console.m_bActive && !m_deviceGone)
        Turn();
    if (m_deviceGone)
        TellDeviceGone(m_console, m_deviceName);
}

CInteractiveTerminal::Waits CInteractiveTerminal::ChooseWaits() const {
    const bool takesKeys = !m_console.IsInputEnded() && m_modem.GetWriteRoom() >= kLongestKey;
    const bool shows = WaitForSingleObject(m_console.GetOutputHandle(), 0) == WAIT_OBJECT_0;
    return {{m_console.GetReleaseEvent(),
             takesKeys ? m_console.GetInputHandle() : m_modem.GetProgressEvent(),
             shows ? m_modem.GetReceiveHandle() : m_console.GetOutputHandle()},
            takesKeys,
            shows};
}

void CInteractiveTerminal::Turn() {
    const Waits waits = ChooseWaits();
    const DWORD timeout = m_console.IsInputEnded() ? kQuietTime : INFINITE;
    const DWORD signalled = WaitForMultipleObjects(static_cast<DWORD>(waits.handles.size()),
                                                   waits.handles.data(), FALSE, timeout);
    if (signalled == WAIT_TIMEOUT)
        return EndWhenQuiet();
    if (signalled == WAIT_FAILED) {
        m_deviceGone = true;
        return;
    }

    if (waits.takesKeys && signalled == WAIT_OBJECT_0 + 1)
        TakeKeys();
    if (!waits.shows || !m_console.m_bActive)
        return;
    const bool anythingShown = ShowReceived();
    if (!anythingShown && signalled == WAIT_OBJECT_0 + 2)
        m_deviceGone = m_modem.IsDeviceGone();
    if (m_console.IsOutputGone())
        EndUnseen();
}

// Nobody would see what the device says from now on.
void CInteractiveTerminal::EndUnseen() {
    TellUser(m_console, "wirelet: standard output takes no more; the terminal ends\n");
    m_console.Restore();
}

void CInteractiveTerminal::TakeKeys() {
    DWORD room = m_modem.GetWriteRoom();
    for (int keys = 0; keys < kKeysPerTurn && room >= kLongestKey; ++keys) {
        BYTE key = 0;
        if (m_console.ReadKey(&key))
            m_console.TypeChar(key);
        room -= kLongestKey;
        if (!m_console.m_bActive || m_console.IsInputEnded() || !m_console.WaitForInput(0))
            break;
    }
    m_console.SendTyped();
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

void CInteractiveTerminal::EndWhenQuiet() {
    const DWORD queued = m_modem.GetQueuedOutput();
    m_quietTurns = queued < m_queuedOutput ? 0 : m_quietTurns + 1;
    m_queuedOutput = queued;
    if (queued == 0 || m_quietTurns >= kStuckTurns)
        m_console.Restore();
}
