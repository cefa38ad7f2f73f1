#include "tests/endtoend/Device.h"

namespace {

// A device that sends on what it gets has little memory.
constexpr std::size_t kEchoMemory = 4096;

} // namespace

CDevice::CDevice(bool raw) {
    termios settings = m_line.GetSettings();
    if (raw)
        cfmakeraw(&settings);
    m_line.ApplySettings(settings);
}

short CDevice::GetEvents() const {
    const bool reads =
        m_nReadLimit != 0 && (!m_pReceiver || m_pReceiver->m_toSend.size() < kEchoMemory);
    const bool writes = !m_toSend.empty() || !m_endless.empty();
    return static_cast<short>((reads ? POLLIN : 0) | (writes ? POLLOUT : 0));
}

void CDevice::OnReady(short events) {
    if (events & POLLOUT) {
        if (m_toSend.empty())
            m_toSend = m_endless;
        const std::size_t taken = m_line.Write(m_toSend);
        m_toSend.erase(0, taken);
        m_nSent += taken;
    }
    if (!(events & (POLLIN | POLLHUP)))
        return;
    const std::string bytes = m_line.Read(m_nReadLimit);
    if (bytes.empty() && (events & POLLHUP))
        m_line.CloseMaster();
    m_received += bytes;
    OnReceived(bytes);
    if (m_pReceiver)
        m_pReceiver->Send(bytes);
    if (m_nReadLimit != kNoLimit)
        usleep(500);
}
