// CVComponent: the base of the system's reference-counted components.
//
// A component has an inner face, which this class is, and public interfaces, which it inherits
// through CVDelegated. The inner face counts the references; the public interfaces hand their three
// operations on to the controlling object: the outer object given at creation, or else the
// component itself. A component starts with one reference, its maker's, and deletes itself when the
// last one goes; an outer object owns the inner face and deletes it. Any thread may count and
// query.
#pragma once

#include "platform/Types.h"

class CVComponent : public IUnknown {
  public:
    CVComponent(const CVComponent&) = delete;
    CVComponent& operator=(const CVComponent&) = delete;
    virtual ~CVComponent() = default;

    // Answers IID_IUnknown with the inner face and the component's own identifiers with their
    // interfaces, with a reference added. E_NOINTERFACE, and null stored, for any other identifier;
    // E_INVALIDARG for a null ppvObject.
    HRESULT QueryInterface(const IID& riid, void** ppvObject) final;

    // Count up and down; return the new count. At 0 the component is deleted.
    ULONG AddRef() final;
    ULONG Release() final;

  protected:
    // pUnkOuter is the outer object, which is not counted: it outlives the component. Null: none.
    explicit CVComponent(IUnknown* pUnkOuter);

    IUnknown* ControllingObject() const { return m_pControllingObject; }

    // The component's interface of an identifier, without a reference added; null when it has none.
    virtual void* FindInterface(const IID& riid) = 0;

  private:
    LONG m_lReferences = 1;
    IUnknown* const m_pControllingObject;
};

// An interface of a component, with the operations that belong to the controlling object.
template <class Interface> class CVDelegated : public Interface {
  public:
    HRESULT QueryInterface(const IID& riid, void** ppvObject) final {
        return m_pControllingObject->QueryInterface(riid, ppvObject);
    }
    ULONG AddRef() final { return m_pControllingObject->AddRef(); }
    ULONG Release() final { return m_pControllingObject->Release(); }

  protected:
    explicit CVDelegated(IUnknown* controllingObject) : m_pControllingObject(controllingObject) {}
    ~CVDelegated() = default;

  private:
    IUnknown* const m_pControllingObject;
};
