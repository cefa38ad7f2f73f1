// CNameTable: every name of a script as a small number, so that names are compared as numbers.
//
// Filled while a script is loaded, then only read. Owned by the engine; used from the script's
// thread. The names are not copied: they must live as long as the table.
#pragma once

#include "platform/Types.h"

#include <string_view>
#include <unordered_map>
#include <vector>

class CNameTable {
  public:
    // The number of a name; a new one for a name seen for the first time.
    DWORD Intern(std::string_view name);

    // The number of a name; Count() for one that was never seen.
    DWORD Find(std::string_view name) const;

    std::string_view operator[](DWORD name) const { return m_names[name]; }
    DWORD Count() const { return static_cast<DWORD>(m_names.size()); }

  private:
    std::unordered_map<std::string_view, DWORD> m_numbers;
    std::vector<std::string_view> m_names;
};
