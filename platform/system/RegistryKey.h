// An open key of the registry: the values that were there when it was opened. Owned by the handle
// table, never changes. Nothing outside platform/ includes this header.
#pragma once

#include "platform/objects/HandleObject.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace platform {

// A name with its text.
using RegistryValues = std::vector<std::pair<std::string, std::string>>;

class CRegistryKeyObject final : public CHandleObject {
  public:
    CRegistryKeyObject(std::string path, RegistryValues values)
        : m_path(std::move(path)), m_values(std::move(values)) {}

    // From the root, without the root's name.
    const std::string& GetPath() const { return m_path; }
    const RegistryValues& GetValues() const { return m_values; }

    bool TryAcquire(short) override { return false; }

  private:
    const std::string m_path;
    const RegistryValues m_values;
};

// What the key of that path holds now; nothing when there is no such key. Any thread may call.
std::optional<RegistryValues> ReadRegistryKey(std::string_view path);

} // namespace platform
