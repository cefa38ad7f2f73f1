#include "platform/Error.h"
#include "platform/HandleObject.h"
#include "platform/Wait.h"

#include <atomic>
#include <cstdint>
#include <mutex>
#include <new>
#include <utility>
#include <vector>

namespace platform {
namespace {

// A handle's value: bits 2 to 15 are the slot, bits 16 to 30 the slot's generation, which is never
// 0. The lowest two bits are clear, so that the pseudo-handles (all of which have bit 1 set) and
// INVALID_HANDLE_VALUE are never taken for a slot.
constexpr unsigned SLOT_SHIFT = 2;
constexpr unsigned GENERATION_SHIFT = 16;
constexpr std::uint32_t SLOT_MASK = 0x3FFF;
constexpr std::uint32_t LAST_GENERATION = 0x7FFF;
constexpr std::size_t SLOTS_MAX = SLOT_MASK + 1;
constexpr std::uint32_t NO_SLOT = 0xFFFFFFFF;

struct Slot {
    std::shared_ptr<CHandleObject> object;
    std::uint32_t generation = 1;
    std::uint32_t nextFree = NO_SLOT;
};

class CHandleTable {
  public:
    HANDLE Add(std::shared_ptr<CHandleObject> object);
    std::shared_ptr<CHandleObject> Find(HANDLE handle);
    std::shared_ptr<CHandleObject> Remove(HANDLE handle);

  private:
    Slot* SlotOf(HANDLE handle);
    std::uint32_t TakeFreeSlot();

    std::mutex m_mutex;
    std::vector<Slot> m_slots;
    std::uint32_t m_dwFirstFree = NO_SLOT;
};

HANDLE CHandleTable::Add(std::shared_ptr<CHandleObject> object) {
    const std::lock_guard lock(m_mutex);
    const std::uint32_t index = TakeFreeSlot();
    if (index == NO_SLOT)
        return nullptr;
    Slot& slot = m_slots[index];
    slot.object = std::move(object);
    const std::uintptr_t value = slot.generation << GENERATION_SHIFT | index << SLOT_SHIFT;
    return reinterpret_cast<HANDLE>(value);
}

std::uint32_t CHandleTable::TakeFreeSlot() {
    if (m_dwFirstFree != NO_SLOT)
        return std::exchange(m_dwFirstFree, m_slots[m_dwFirstFree].nextFree);
    if (m_slots.size() == SLOTS_MAX)
        return NO_SLOT;
    try {
        m_slots.emplace_back();
    } catch (const std::bad_alloc&) {
        return NO_SLOT;
    }
    return static_cast<std::uint32_t>(m_slots.size() - 1);
}

Slot* CHandleTable::SlotOf(HANDLE handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    const std::uintptr_t index = value >> SLOT_SHIFT & SLOT_MASK;
    if ((value & ((1U << SLOT_SHIFT) - 1)) != 0 || index >= m_slots.size())
        return nullptr;
    Slot& slot = m_slots[index];
    const bool isNamed = slot.object != nullptr && slot.generation == value >> GENERATION_SHIFT;
    return isNamed ? &slot : nullptr;
}

std::shared_ptr<CHandleObject> CHandleTable::Find(HANDLE handle) {
    const std::lock_guard lock(m_mutex);
    const Slot* slot = SlotOf(handle);
    return slot != nullptr ? slot->object : nullptr;
}

std::shared_ptr<CHandleObject> CHandleTable::Remove(HANDLE handle) {
    const std::lock_guard lock(m_mutex);
    Slot* slot = SlotOf(handle);
    if (slot == nullptr)
        return nullptr;
    slot->generation = slot->generation == LAST_GENERATION ? 1 : slot->generation + 1;
    slot->nextFree = m_dwFirstFree;
    m_dwFirstFree = static_cast<std::uint32_t>(slot - m_slots.data());
    return std::exchange(slot->object, nullptr);
}

// Never destroyed: threads that outlive main() may still look handles up.
CHandleTable& Table() {
    static CHandleTable& table = *new CHandleTable;
    return table;
}

// The objects that live as long as the process. Their handles are slots of generation 0, which the
// table does not have; slot 0 is left out, because no handle is null.
constexpr std::size_t IMMORTALS_MAX = 4;
constinit std::atomic<CHandleObject*> g_immortals[IMMORTALS_MAX + 1] = {};

CHandleObject* FindImmortal(HANDLE handle) {
    const auto value = reinterpret_cast<std::uintptr_t>(handle);
    if (value > IMMORTALS_MAX << SLOT_SHIFT || (value & ((1U << SLOT_SHIFT) - 1)) != 0)
        return nullptr;
    return g_immortals[value >> SLOT_SHIFT].load(std::memory_order_acquire);
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
    for (std::uintptr_t slot = 1; slot <= IMMORTALS_MAX; ++slot) {
        CHandleObject* none = nullptr;
        if (g_immortals[slot].compare_exchange_strong(none, &object))
            return reinterpret_cast<HANDLE>(slot << SLOT_SHIFT);
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

BOOL CloseHandle(HANDLE hObject) {
    const auto object = platform::RemoveHandle(hObject);
    return object ? object->Close() : FALSE;
}
