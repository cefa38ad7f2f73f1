#include "platform/WindowTable.h"

#include "platform/Error.h"
#include "platform/MessageQueue.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace platform {
namespace {

// A window's value: the lowest two bits tell it from the handles of other objects, which never have
// these; bits 2 to 15 are the slot, bits 16 to 30 the slot's generation, which is never 0. No
// published special value looks like this.
constexpr std::uintptr_t KIND = 1;
constexpr std::uintptr_t KIND_MASK = 3;
constexpr unsigned SLOT_SHIFT = 2;
constexpr unsigned GENERATION_SHIFT = 16;
constexpr std::uintptr_t SLOT_MASK = 0x3FFF;
constexpr std::uint32_t LAST_GENERATION = 0x7FFF;
constexpr std::size_t SLOTS_MAX = SLOT_MASK + 1;

// The published range of a class's number and length of its name.
constexpr std::size_t FIRST_CLASS = 0xC000;
constexpr std::size_t CLASSES_MAX = 0x4000;
constexpr std::size_t CLASS_NAME_MAX = 256;

// Empty when the name cannot be one.
std::string_view ClassName(LPCSTR name) {
    const std::size_t length = name != nullptr ? strnlen(name, CLASS_NAME_MAX + 1) : 0;
    return length <= CLASS_NAME_MAX ? std::string_view(name, length) : std::string_view();
}

char LowerCase(char character) {
    const bool isUpperCase = character >= 'A' && character <= 'Z';
    return isUpperCase ? static_cast<char>(character - 'A' + 'a') : character;
}

bool IsSameName(std::string_view left, std::string_view right) {
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [](char a, char b) { return LowerCase(a) == LowerCase(b); });
}

} // namespace

ATOM CWindowTable::RegisterClass(LPCSTR name, WNDPROC procedure) {
    const std::string_view className = ClassName(name);
    if (className.empty() || procedure == nullptr) {
        SetLastError(ERROR_INVALID_PARAMETER);
        return 0;
    }
    const std::lock_guard lock(m_mutex);
    if (FindClass(className) != nullptr) {
        SetLastError(ERROR_CLASS_ALREADY_EXISTS);
        return 0;
    }
    try {
        std::string kept(className);
        if (Class* const free = TakeFreeClass()) {
            *free = {std::move(kept), procedure, 0};
            return static_cast<ATOM>(FIRST_CLASS + static_cast<std::size_t>(free - &m_classes[0]));
        }
    } catch (const std::bad_alloc&) {
    }
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return 0;
}

BOOL CWindowTable::UnregisterClass(LPCSTR name) {
    const std::lock_guard lock(m_mutex);
    Class* const found = FindClass(ClassName(name));
    if (found == nullptr)
        return FailWith(ERROR_CLASS_DOES_NOT_EXIST);
    if (found->windows != 0)
        return FailWith(ERROR_CLASS_HAS_WINDOWS);
    *found = {};
    return TRUE;
}

CWindowTable::Class* CWindowTable::FindClass(std::string_view name) {
    if (name.empty())
        return nullptr;
    for (Class& each : m_classes) {
        if (IsSameName(each.name, name))
            return &each;
    }
    return nullptr;
}

CWindowTable::Class* CWindowTable::TakeFreeClass() {
    for (Class& each : m_classes) {
        if (each.name.empty())
            return &each;
    }
    return m_classes.size() < CLASSES_MAX ? &m_classes.emplace_back() : nullptr;
}

HWND CWindowTable::Add(LPCSTR className, std::shared_ptr<CMessageQueue> queue) {
    const std::lock_guard lock(m_mutex);
    Class* const windowClass = FindClass(ClassName(className));
    if (windowClass == nullptr) {
        SetLastError(ERROR_CANNOT_FIND_WND_CLASS);
        return nullptr;
    }
    const std::uint32_t index = TakeFreeSlot();
    if (index == NO_SLOT) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    ++windowClass->windows;
    Slot& slot = m_slots[index];
    slot.queue = std::move(queue);
    slot.windowClass = static_cast<std::size_t>(windowClass - &m_classes[0]);
    slot.userData = 0;
    const std::uintptr_t value = slot.generation << GENERATION_SHIFT | index << SLOT_SHIFT | KIND;
    return reinterpret_cast<HWND>(value);
}

std::uint32_t CWindowTable::TakeFreeSlot() {
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

BOOL CWindowTable::Remove(HWND window, const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    Slot* const slot = ValidSlotOf(window);
    if (slot == nullptr)
        return FALSE;
    if (slot->queue.get() != &owner)
        return FailWith(ERROR_ACCESS_DENIED);
    --m_classes[slot->windowClass].windows;
    slot->queue.reset();
    slot->generation = slot->generation == LAST_GENERATION ? 1 : slot->generation + 1;
    slot->nextFree = m_dwFirstFree;
    m_dwFirstFree = static_cast<std::uint32_t>(slot - &m_slots[0]);
    return TRUE;
}

bool CWindowTable::Has(HWND window) {
    const std::lock_guard lock(m_mutex);
    return SlotOf(window) != nullptr;
}

std::shared_ptr<CMessageQueue> CWindowTable::QueueOf(HWND window) {
    const std::lock_guard lock(m_mutex);
    const Slot* const slot = ValidSlotOf(window);
    return slot != nullptr ? slot->queue : nullptr;
}

WNDPROC CWindowTable::ProcedureOf(HWND window, const CMessageQueue& owner) {
    const std::lock_guard lock(m_mutex);
    const Slot* const slot = ValidSlotOf(window);
    if (slot == nullptr)
        return nullptr;
    if (slot->queue.get() == &owner)
        return m_classes[slot->windowClass].procedure;
    SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return nullptr;
}

LONG_PTR CWindowTable::UserData(HWND window) {
    const std::lock_guard lock(m_mutex);
    const Slot* const slot = ValidSlotOf(window);
    return slot != nullptr ? slot->userData : 0;
}

LONG_PTR CWindowTable::ExchangeUserData(HWND window, LONG_PTR value) {
    const std::lock_guard lock(m_mutex);
    Slot* const slot = ValidSlotOf(window);
    return slot != nullptr ? std::exchange(slot->userData, value) : 0;
}

CWindowTable::Slot* CWindowTable::SlotOf(HWND window) {
    const auto value = reinterpret_cast<std::uintptr_t>(window);
    const std::uintptr_t index = value >> SLOT_SHIFT & SLOT_MASK;
    if ((value & KIND_MASK) != KIND || index >= m_slots.size())
        return nullptr;
    Slot& slot = m_slots[index];
    const bool isNamed = slot.queue != nullptr && slot.generation == value >> GENERATION_SHIFT;
    return isNamed ? &slot : nullptr;
}

CWindowTable::Slot* CWindowTable::ValidSlotOf(HWND window) {
    Slot* const slot = SlotOf(window);
    if (slot == nullptr)
        SetLastError(ERROR_INVALID_WINDOW_HANDLE);
    return slot;
}

// Never destroyed: threads that outlive main() may still look windows up.
CWindowTable& WindowTable() {
    static CWindowTable& table = *new CWindowTable;
    return table;
}

} // namespace platform
