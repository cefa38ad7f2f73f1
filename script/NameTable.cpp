#include "script/NameTable.h"

DWORD CNameTable::Intern(std::string_view name) {
    const auto [entry, isNew] = m_numbers.try_emplace(name, Count());
    if (isNew)
        m_names.push_back(name);
    return entry->second;
}

DWORD CNameTable::Find(std::string_view name) const {
    const auto entry = m_numbers.find(name);
    return entry == m_numbers.end() ? Count() : entry->second;
}
