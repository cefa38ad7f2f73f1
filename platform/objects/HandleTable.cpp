// A handle is looked up under one lock, and what it names is shared: a call in progress keeps its
// object. The few objects of the process's whole life are found past the lock.
#include "platform/objects/HandleTable.h"
#include "platform/Error.h"
#include "platform/Wait.h"
#include "platform/objects/SlotTable.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <utility>

namespace platform {
namespace {

using Slots = CSlotTable<std::shared_ptr<CHandleObject>>;

std::uintptr_t ToNumber(HANDLE handle) {
    return reinterpret_cast<std::uintptr_t>(handle);
}

class CHandleTable {
  public:
    HANDLE Add(std::shared_ptr<CHandleObject> object) {
        const std::lock_guard lock(m_mutex);
        return reinterpret_cast<HANDLE>(m_slots.Add(std::move(object)));
    }

    std::shared_ptr<CHandleObject> Find(HANDLE handle) {
        const std::lock_guard lock(m_mutex);
        const auto* const object = m_slots.Find(ToNumber(handle));
        return object != nullptr ? *object : nullptr;
    }

    std::shared_ptr<CHandleObject> Remove(HANDLE handle) {
        const std::lock_guard lock(m_mutex);
        return m_slots.Find(ToNumber(handle)) ? m_slots.Remove(ToNumber(handle)) : nullptr;
    }

  private:
    std::mutex m_mutex;
    Slots m_slots;
};

// Never destroyed: threads that outlive main() may still look handles up.
CHandleTable& Table() {
    static CHandleTable& table = *new CHandleTable;
    return table;
}

// The objects that live as long as the process. Their handles are slots of generation 0, which the
// table does not have; slot 0 is left out, because no handle is null.
constexpr std::size_t kImmortalsMax = 4;
constinit std::atomic<CHandleObject*> g_immortals[kImmortalsMax + 1] = {};

CHandleObject* FindImmortal(HANDLE handle) {
    const std::uintptr_t number = ToNumber(handle);
    if (number > kImmortalsMax << Slots::kSlotShift || (number & Slots::kClearBits) != 0)
        return nullptr;
    return g_immortals[number >> Slots::kSlotShift].load(std::memory_order_acquire);
}

std::shared_ptr<CHandleObject> OrInvalid(std::shared_ptr<CHandleObject> object) {
    if (!object)
        SetInvalidHandleError();
    return object;
}

} // namespace

HANDLE RegisterHandle(std::shared_ptr<CHandleObject> object) {
    if (!object)
        return nullptr;
    const HANDLE handle = Table().Add(std::move(object));
    if (handle == nullptr)
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return handle;
}

HANDLE RegisterImmortal(CHandleObject& object) {
    for (std::uintptr_t slot = 1; slot <= kImmortalsMax; ++slot) {
        CHandleObject* none = nullptr;
        if (g_immortals[slot].compare_exchange_strong(none, &object))
            return reinterpret_cast<HANDLE>(slot << Slots::kSlotShift);
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

std::shared_ptr<CHandleObject> FindHandle(HANDLE handle) {
    // Nobody owns an immortal, so the pointer to it counts nothing.
    if (CHandleObject* const immortal = FindImmortal(handle))
        return {std::shared_ptr<CHandleObject>(), immortal};
    return OrInvalid(Table().Find(handle));
}

std::shared_ptr<CHandleObject> RemoveHandle(HANDLE handle) {
    return OrInvalid(Table().Remove(handle));
}

void SetInvalidHandleError() {
    SetLastError(ERROR_INVALID_HANDLE);
}

} // namespace platform
