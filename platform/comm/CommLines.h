// The modem lines and error counters of a port's device, as waits for comm events look at them.
//
// One source belongs to each port and asks the port's driver. Any thread may call any operation;
// AwaitMove is called by one thread at a time. Nothing outside platform/ includes this header.
#pragma once

#include "platform/Types.h"

#include <linux/serial.h>

namespace platform {

class CCommDriver;

class ICommLines {
  public:
    virtual ~ICommLines() = default;

    // The lines as TIOCM_ bits; 0 when the device has none. FALSE with the errors of CCommDriver.
    virtual BOOL GetLines(int& lines) = 0;

    // False once GetLines has found that the device has none.
    virtual bool HasLines() const = 0;

    // The driver's counters; FALSE when it does not count.
    virtual BOOL GetCounters(serial_icounter_struct& counters) = 0;

    // Blocks until one of the lines moves or a signal comes. 0, or the system's error number: EINTR
    // after a signal, another one when the driver cannot wait.
    virtual int AwaitMove(int lines) = 0;
};

class CCommDriverLines final : public ICommLines {
  public:
    explicit CCommDriverLines(CCommDriver& driver) : m_driver(driver) {}

    BOOL GetLines(int& lines) override;
    bool HasLines() const override;
    BOOL GetCounters(serial_icounter_struct& counters) override;
    int AwaitMove(int lines) override;

  private:
    CCommDriver& m_driver;
};

} // namespace platform
