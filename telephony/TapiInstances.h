// CTapiInstances: the telephony objects that a message of the service may be for.
//
// A message carries the instance value that a line or phone was opened with, and may have been
// under way when the object went. One list for the process; any thread may call. Objects add
// themselves and leave before they go.
#pragma once

#include "common/CriticalSection.h"

struct TapiInstance {
    TapiInstance* pNext = nullptr;
};

class CTapiInstances {
  public:
    void Add(TapiInstance& instance);
    void Remove(const TapiInstance& instance);

    // The instance with that address, null when there is none (any more).
    TapiInstance* Find(DWORD_PTR dwInstance);

  private:
    TapiInstance* m_pFirst = nullptr;
    CCriticalSection m_CritSec;
};
