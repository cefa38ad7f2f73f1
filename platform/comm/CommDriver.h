// The kernel's tty driver behind one open port: the descriptor and what is asked of it.
//
// Owned by the port. Any thread may call any operation after Open; Receive and Send never block,
// the others as long as the driver takes to answer. Failures leave the last error set:
// ERROR_DEVICE_NOT_CONNECTED once the device is gone, else ERROR_GEN_FAILURE where nothing else is
// said. A device that is gone stays gone.
#pragma once

#include "platform/comm/CommSettings.h"
#include "platform/objects/Descriptor.h"

#include <linux/serial.h>

#include <atomic>
#include <mutex>

namespace platform {

class CCommDriver {
  public:
    CCommDriver() = default;
    CCommDriver(const CCommDriver&) = delete;
    CCommDriver& operator=(const CCommDriver&) = delete;
    // Never waits for output that the device does not take.
    ~CCommDriver();

    // Opens the device for this process alone, raw. FALSE with the errors of CreateFileA.
    BOOL Open(LPCSTR path);

    // Discards what was not sent, puts the settings found at opening back and lets others in. The
    // descriptor stays open, for threads still in a call, until the object goes. FALSE with the
    // driver's reason; TRUE for a device that is gone, which has nothing left to put back.
    BOOL Release();

    int Descriptor() const { return m_descriptor.Get(); }
    bool IsGone() const { return m_bGone.load(std::memory_order_acquire); }
    void SetGone() { m_bGone.store(true, std::memory_order_release); }

    // The bytes received, up to count; 0 when there are none; -1 on failure.
    int Receive(void* buffer, DWORD count);

    // Hands bytes over; returns how many the driver took, 0 included, or -1 on failure.
    int Send(const void* buffer, DWORD count);

    // The bytes that wait in the driver's input and output queues.
    BOOL CountInput(DWORD& count);
    BOOL CountOutput(DWORD& count);

    // Discards the bytes of one of the driver's queues: TCIFLUSH or TCOFLUSH. A pseudo-terminal
    // holds no output.
    BOOL Flush(int queue);

    // The CE_ bits of the errors since the last call; none when the driver does not count.
    BOOL TakeErrors(DWORD& errors);

    // The modem lines as TIOCM_ bits; 0 when the device has none. Setting then has no effect.
    BOOL GetLines(int& lines);
    bool HasLines() const { return m_bHasLines; } // false once a call has found none
    BOOL SetLines(int lines, bool on);

    // The line settings. SetState fails with ERROR_INVALID_PARAMETER when the settings in place
    // afterwards are not those asked for, and has then put the former ones back.
    BOOL GetState(DCB& dcb);
    BOOL SetState(const DCB& dcb);

    // Whether the line settings let the driver hold the device up once its input queue fills.
    bool HoldsSender() const { return m_bHoldsSender; }

  private:
    BOOL OpenDevice(LPCSTR path);
    BOOL MakeExclusive();
    BOOL HangsUp() const;
    BOOL Call(unsigned long request, void* argument);
    BOOL CallIfOffered(std::atomic<bool>& offered, unsigned long request, void* argument);
    BOOL FailCall(int systemError);
    BOOL ApplyLines(const DCB& dcb);

    CDescriptor m_descriptor;
    bool m_bPseudoTerminal = false;
    std::atomic<bool> m_bGone = false;
    std::atomic<bool> m_bHoldsSender = false;
    std::atomic<bool> m_bHasCounters = true;
    std::atomic<bool> m_bHasLines = true;

    std::mutex m_countersMutex;
    serial_icounter_struct m_counters{}; // as last reported

    std::mutex m_settingsMutex; // guards all below
    termios2 m_found{};         // put back by Release
    bool m_bHeld = false;       // settings and exclusive use are to be given back
    bool m_bStuck = false;      // output was left that could not be discarded
    DWORD m_dwDTRControl = DTR_CONTROL_ENABLE;
    DWORD m_dwRTSControl = RTS_CONTROL_ENABLE;
};

} // namespace platform
