#include "common/Component.h"

#include "platform/Thread.h"

CVComponent::CVComponent(IUnknown* pUnkOuter)
    : m_pControllingObject(pUnkOuter ? pUnkOuter : this) {}

HRESULT CVComponent::QueryInterface(const IID& riid, void** ppvObject) {
    if (!ppvObject)
        return E_INVALIDARG;
    if (riid == IID_IUnknown) {
        *ppvObject = static_cast<IUnknown*>(this);
        AddRef();
        return S_OK;
    }
    *ppvObject = FindInterface(riid);
    if (!*ppvObject)
        return E_NOINTERFACE;
    m_pControllingObject->AddRef();
    return S_OK;
}

ULONG CVComponent::AddRef() {
    return static_cast<ULONG>(InterlockedIncrement(&m_lReferences));
}

ULONG CVComponent::Release() {
    const LONG references = InterlockedDecrement(&m_lReferences);
    if (references == 0)
        delete this;
    return static_cast<ULONG>(references);
}
