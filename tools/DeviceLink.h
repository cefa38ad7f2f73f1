// A symbolic link with a name of the user's choice that leads to the simulated modem. It is removed
// with the object, unless another program has put something else in its place meanwhile.
//
// A link that is there already is replaced, in one step, when it leads to a pseudo-terminal or to
// nothing; anything else is left alone. One thread at a time.
#pragma once

#include <string>

namespace modemsim {

class CDeviceLink {
  public:
    CDeviceLink() = default;
    CDeviceLink(const CDeviceLink&) = delete;
    CDeviceLink& operator=(const CDeviceLink&) = delete;
    ~CDeviceLink() { Remove(); }

    // Makes path lead to device; false, with the reason in error, when it cannot or must not.
    bool Create(const std::string& path, const std::string& device, std::string& error);

    void Remove();

  private:
    std::string m_strPath; // empty: there is none
    std::string m_strDevice;
};

} // namespace modemsim
