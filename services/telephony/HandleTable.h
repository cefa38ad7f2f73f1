// CHandleTable: what the service's handles of one kind stand for.
//
// Guarded by the service's lock. No handle is ever 0, and a number comes again only after four
// thousand million others: a stale one is found out.
#pragma once

#include "platform/Types.h"

#include <map>
#include <memory>
#include <vector>

namespace telephonyservice {

// More than any program has open; bounds what one that forgets to close takes.
inline constexpr std::size_t kMostHandles = 1024;

template <class Object> class CHandleTable {
  public:
    // The new handle; 0 when the table is full.
    DWORD Add(std::shared_ptr<Object> object) {
        if (m_objects.size() >= kMostHandles)
            return 0;
        do
            ++m_dwLast;
        while (m_dwLast == 0 || m_objects.count(m_dwLast) != 0);
        m_objects.emplace(m_dwLast, std::move(object));
        return m_dwLast;
    }

    // Null for a handle that is none.
    std::shared_ptr<Object> Find(DWORD handle) const {
        const auto found = m_objects.find(handle);
        return found != m_objects.end() ? found->second : nullptr;
    }

    // Null for a handle that was none.
    std::shared_ptr<Object> Remove(DWORD handle) {
        std::shared_ptr<Object> object = Find(handle);
        m_objects.erase(handle);
        return object;
    }

    template <class Condition> std::vector<DWORD> FindAll(const Condition& condition) const {
        std::vector<DWORD> handles;
        for (const auto& [handle, object] : m_objects) {
            if (condition(*object))
                handles.push_back(handle);
        }
        return handles;
    }

  private:
    std::map<DWORD, std::shared_ptr<Object>> m_objects;
    DWORD m_dwLast = 0;
};

} // namespace telephonyservice
