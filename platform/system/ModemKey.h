// CModemKey: an open key of the registry, with its one value. Owned by the handle table, never
// changes; any thread may use it. Nothing outside platform/ includes this header.
#pragma once

#include "platform/objects/HandleObject.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

namespace platform {

class CModemKey final : public CHandleObject {
  public:
    explicit CModemKey(std::string attachedTo) : m_attachedTo(std::move(attachedTo)) {}

    // How the modem's device is opened.
    const std::string& AttachedTo() const { return m_attachedTo; }

    bool TryAcquire(short) override { return false; }

  private:
    const std::string m_attachedTo;
};

// The key of that path below HKEY_LOCAL_MACHINE, of what is there now; null with
// ERROR_FILE_NOT_FOUND. May throw bad_alloc.
std::shared_ptr<CModemKey> OpenModemKey(std::string_view path);

} // namespace platform
