// CSlotTable: small numbers for things that come and go. Nothing outside platform/ includes this
// header.
//
// A number's lowest two bits are clear; bits 2 to 15 are the slot, bits 16 to 30 the slot's
// generation, which is never 0: the number of a thing that has gone is found out. No published
// special value looks like this, and no window's number. Whoever owns a table guards it.
#pragma once

#include <cstdint>
#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace platform {

template <class Content> class CSlotTable {
  public:
    static constexpr unsigned kSlotShift = 2;
    static constexpr std::uintptr_t kClearBits = (1 << kSlotShift) - 1;

    // The number; 0 when the table is full or memory is short.
    std::uintptr_t Add(Content content) {
        const std::uint32_t index = TakeFree();
        if (index == kNoSlot)
            return 0;
        m_slots[index].content.emplace(std::move(content));
        return std::uintptr_t{m_slots[index].generation} << kGenerationShift | std::uintptr_t{index}
                                                                                   << kSlotShift;
    }

    // Null for a number that names nothing; valid until the next Add.
    Content* Find(std::uintptr_t number) {
        const std::uintptr_t index = number >> kSlotShift & kSlotMask;
        if ((number & kClearBits) != 0 || index >= m_slots.size())
            return nullptr;
        Slot& slot = m_slots[index];
        const bool isNamed = slot.content && slot.generation == number >> kGenerationShift;
        return isNamed ? &*slot.content : nullptr;
    }

    // What the number named, which Find has found.
    Content Remove(std::uintptr_t number) {
        const std::uintptr_t index = number >> kSlotShift & kSlotMask;
        Slot& slot = m_slots[index];
        slot.generation = slot.generation == kLastGeneration ? 1 : slot.generation + 1;
        slot.nextFree = std::exchange(m_dwFirstFree, static_cast<std::uint32_t>(index));
        Content content = *std::move(slot.content);
        slot.content.reset();
        return content;
    }

  private:
    static constexpr unsigned kGenerationShift = 16;
    static constexpr std::uintptr_t kSlotMask = 0x3FFF;
    static constexpr std::uint32_t kLastGeneration = 0x7FFF;
    static constexpr std::uint32_t kNoSlot = 0xFFFFFFFF;

    struct Slot {
        std::optional<Content> content; // none while the slot is free
        std::uint32_t generation = 1;
        std::uint32_t nextFree = kNoSlot;
    };

    std::uint32_t TakeFree() {
        if (m_dwFirstFree != kNoSlot)
            return std::exchange(m_dwFirstFree, m_slots[m_dwFirstFree].nextFree);
        if (m_slots.size() > kSlotMask)
            return kNoSlot;
        try {
            m_slots.emplace_back();
        } catch (const std::bad_alloc&) {
            return kNoSlot;
        }
        return static_cast<std::uint32_t>(m_slots.size() - 1);
    }

    std::vector<Slot> m_slots;
    std::uint32_t m_dwFirstFree = kNoSlot;
};

} // namespace platform
