#include "platform/Thread.h"

#include <atomic>

void InitializeCriticalSection(CRITICAL_SECTION* lpCriticalSection) {
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&lpCriticalSection->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
}

void EnterCriticalSection(CRITICAL_SECTION* lpCriticalSection) {
    pthread_mutex_lock(&lpCriticalSection->mutex);
}

void LeaveCriticalSection(CRITICAL_SECTION* lpCriticalSection) {
    pthread_mutex_unlock(&lpCriticalSection->mutex);
}

void DeleteCriticalSection(CRITICAL_SECTION* lpCriticalSection) {
    pthread_mutex_destroy(&lpCriticalSection->mutex);
}

LONG InterlockedIncrement(LONG* lpAddend) {
    return std::atomic_ref(*lpAddend).fetch_add(1) + 1;
}

LONG InterlockedDecrement(LONG* lpAddend) {
    return std::atomic_ref(*lpAddend).fetch_sub(1) - 1;
}
