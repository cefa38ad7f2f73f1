// CCriticalSection and CLock: a lock that its holder may take again, and its hold for a scope.
#pragma once

#include "platform/Thread.h"

class CCriticalSection {
  public:
    CCriticalSection() { InitializeCriticalSection(&m_section); }
    ~CCriticalSection() { DeleteCriticalSection(&m_section); }
    CCriticalSection(const CCriticalSection&) = delete;
    CCriticalSection& operator=(const CCriticalSection&) = delete;

    void Enter() { EnterCriticalSection(&m_section); }
    void Leave() { LeaveCriticalSection(&m_section); }

  private:
    CRITICAL_SECTION m_section;
};

// Holds the lock from here to the end of the scope.
class CLock {
  public:
    explicit CLock(CCriticalSection& section) : m_section(section) { m_section.Enter(); }
    ~CLock() { m_section.Leave(); }
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

  private:
    CCriticalSection& m_section;
};
