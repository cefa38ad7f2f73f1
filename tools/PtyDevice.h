// The pseudo-terminal that stands for the modem's serial port, in raw mode, with the means to
// notice that it is opened and closed.
//
// While nobody has the device open, this object keeps a descriptor of its own on the opener's side:
// without it the controlling side would report a hang-up without end. It also serves to undo what
// the last opener left behind (exclusive use, line settings, unread bytes). When somebody closes
// the device, that descriptor is given up until the hang-up tells that the last one has; only the
// hang-up is sure, since the notice of a close comes before the close is complete.
//
// Owned by CSimulatorLoop, one thread at a time. The device goes away with the object.
#pragma once

#include "platform/objects/Descriptor.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace modemsim {

class CPtyDevice {
  public:
    enum class ETransfer { Done, Later, Gone };

    // Makes the device; false, with the reason in error, when the system gives none.
    bool Open(std::string& error);

    // The device's name, "/dev/pts/7".
    const std::string& Path() const { return m_strPath; }

    // To poll for input and output; -1 while nothing can be learned from it.
    int Descriptor() const;

    // To poll for input: then NoticeOpeners() has something to look at.
    int NoticeDescriptor() const { return m_hNotices.Get(); }

    // Looks at notices; true when the device was opened since the last look.
    bool NoticeOpeners();

    // Descriptor() reported a hang-up and everything was read: nobody has the device open any more.
    // Makes it ready for the next opener.
    void Recover();

    // Gone means that nobody has the device open; Later that the call would block. count is 0 then.
    ETransfer Read(char* buffer, std::size_t size, std::size_t& count);
    ETransfer Write(std::string_view bytes, std::size_t& count);

    // Hangs up on every opener.
    void Vanish();

  private:
    bool OpenOwn();
    unsigned TakeNotices();

    platform::CDescriptor m_hController;
    platform::CDescriptor m_hOwn;
    platform::CDescriptor m_hNotices;
    std::string m_strPath;
    bool m_bSomebody = false;
};

} // namespace modemsim
