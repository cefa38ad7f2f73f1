// What a port's hangup handle names: signalled once the device is gone and never by received bytes.
//
// Owned by the handle table and by the waits on it; keeps the port's descriptor alive meanwhile.
// The port takes its handle away when it is closed. Any thread may wait for it.
#pragma once

#include "platform/comm/CommPort.h"
#include "platform/objects/HandleObject.h"

#include <memory>
#include <utility>

namespace platform {

class CCommHangup final : public CHandleObject {
  public:
    explicit CCommHangup(std::shared_ptr<CCommPort> port) : m_port(std::move(port)) {}

    int WaitDescriptor() const override { return m_port->Driver().Descriptor(); }
    // Hang-ups are shown without being asked for.
    short WaitEvents() const override { return 0; }
    bool IsReady() const override { return m_port->IsGone(); }
    bool TryAcquire(short events) override {
        return IsReady() || (events & (POLLHUP | POLLERR)) != 0;
    }
    BOOL Close() override {
        m_port->ForgetHangupHandle();
        return TRUE;
    }

  private:
    const std::shared_ptr<CCommPort> m_port;
};

} // namespace platform
