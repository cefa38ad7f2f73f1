// A descriptor by which several parties wake a thread that waits with poll(). Shared by those; any
// thread may call any operation. Nothing outside platform/ includes this header.
#pragma once

#include "platform/Types.h"
#include "platform/objects/Descriptor.h"

namespace platform {

class CCommWake {
  public:
    // FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    // Shows POLLIN from a signal until it is cleared.
    int Descriptor() const { return m_descriptor.Get(); }
    void Signal();
    void Clear();

  private:
    CDescriptor m_descriptor; // an eventfd
};

} // namespace platform
