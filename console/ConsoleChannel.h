// The way from the console to standard output. Once opened it takes what the other end has room for
// and never blocks; the inherited descriptor, which the shell and others share, keeps its flags.
//
// Owned by the gathering buffer, used by the thread that has taken the console over. Before Open
// and after Close it writes to the inherited descriptor and blocks.
#pragma once

#include "platform/objects/Descriptor.h"

#include <cstddef>
#include <sys/types.h>

namespace platform {

class CConsoleChannel {
  public:
    // The inherited descriptor; it is not closed.
    void Use(int descriptor) { m_nInherited = descriptor; }

    // From now on writes do not block. Cannot fail: where the system has no better way, writes are
    // made small and only when poll() says that there is room.
    void Open();
    void Close();

    // The descriptor to poll for POLLOUT.
    int Descriptor() const { return m_own ? m_own.Get() : m_nInherited; }

    // Returns how many bytes were taken; 0 when there is no room now; -1 when the other end is gone
    // or the disk is full.
    ssize_t Write(const void* bytes, std::size_t count);

  private:
    enum class Way { Blocking, Nonblocking, Socket, Guarded };

    Way ChooseWay();
    ssize_t WriteOnce(const void* bytes, std::size_t count) const;
    bool HasRoom() const;

    int m_nInherited = -1;
    CDescriptor m_own; // the same file, opened anew
    Way m_way = Way::Blocking;
};

} // namespace platform
