// CInterfacePtr: one counted reference to a component interface, released with its holder.
//
// The holder owns the reference, not the object. A reference is used from one thread at a time;
// different references to one object may be used from different threads, as far as the object's own
// AddRef and Release allow it.
#pragma once

#include "platform/Types.h"

#include <utility>

template <class Interface> class CInterfacePtr {
  public:
    CInterfacePtr() = default;

    // Takes over a reference that the caller owns; null makes an empty pointer.
    explicit CInterfacePtr(Interface* owned) noexcept : m_pInterface(owned) {}

    CInterfacePtr(const CInterfacePtr& other) : m_pInterface(other.m_pInterface) {
        if (m_pInterface != nullptr)
            m_pInterface->AddRef();
    }
    CInterfacePtr(CInterfacePtr&& other) noexcept
        : m_pInterface(std::exchange(other.m_pInterface, nullptr)) {}
    CInterfacePtr& operator=(CInterfacePtr other) noexcept {
        std::swap(m_pInterface, other.m_pInterface);
        return *this;
    }
    ~CInterfacePtr() { Reset(); }

    // Releases the reference held and takes over another one, or none.
    void Reset(Interface* owned = nullptr) {
        Interface* former = std::exchange(m_pInterface, owned);
        if (former != nullptr)
            former->Release();
    }

    // Where a factory stores the reference it hands out; the one held is released first.
    Interface** Receive() {
        Reset();
        return &m_pInterface;
    }

    // The object's other interface; empty when it has none, or when this pointer is empty.
    template <class Other> CInterfacePtr<Other> Query(const IID& identifier) const {
        void* found = nullptr;
        if (m_pInterface == nullptr || m_pInterface->QueryInterface(identifier, &found) != S_OK)
            return {};
        return CInterfacePtr<Other>(static_cast<Other*>(found));
    }

    // The interface, still owned by this pointer; null when it is empty.
    Interface* Get() const { return m_pInterface; }
    Interface* operator->() const { return m_pInterface; }
    explicit operator bool() const { return m_pInterface != nullptr; }

  private:
    Interface* m_pInterface = nullptr;
};
