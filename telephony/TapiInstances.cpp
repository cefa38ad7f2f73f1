#include "telephony/TapiInstances.h"

void CTapiInstances::Add(TapiInstance& instance) {
    const CLock lock(m_CritSec);
    instance.pNext = m_pFirst;
    m_pFirst = &instance;
}

void CTapiInstances::Remove(const TapiInstance& instance) {
    const CLock lock(m_CritSec);
    TapiInstance** link = &m_pFirst;
    while (*link && *link != &instance)
        link = &(*link)->pNext;
    if (*link)
        *link = instance.pNext;
}

TapiInstance* CTapiInstances::Find(DWORD_PTR dwInstance) {
    const CLock lock(m_CritSec);
    TapiInstance* found = m_pFirst;
    while (found && reinterpret_cast<DWORD_PTR>(found) != dwInstance)
        found = found->pNext;
    return found;
}
