// A wait is turns of one poll() over the objects' descriptors, the companion's, the thread's
// termination and the end of the program. Before a turn blocks, the companion does its work, but
// only after a look that has found nothing: who need not wait does not pay for it. What poll()
// shows is only a hint; TryAcquire decides, since another thread may have been faster.
#include "platform/objects/WaitLoop.h"

#include "platform/Error.h"
#include "platform/objects/DueTimer.h"
#include "platform/objects/EndWatch.h"
#include "platform/objects/HandleTable.h"
#include "platform/objects/ThreadObject.h"
#include "platform/objects/WaitCompanion.h"

#include <algorithm>
#include <cerrno>

namespace platform {
namespace {

thread_local IWaitCompanion* t_companion = nullptr;

} // namespace

void SetWaitCompanion(IWaitCompanion* companion) {
    t_companion = companion;
}

CWaitLoop::CWaitLoop(CHandleObject* const* objects, DWORD count, DWORD milliseconds,
                     const HANDLE* handles)
    : m_objects(objects), m_dwCount(count), m_handles(handles), m_deadline(milliseconds) {}

DWORD CWaitLoop::Run() {
    for (DWORD index = 0; index < m_dwCount; ++index)
        m_objects[index]->BeginWait();
    while (TakeTurn() == Turn::Again)
        continue;
    for (DWORD index = 0; index < m_dwCount; ++index)
        m_objects[index]->EndWait();
    return m_dwResult;
}

void CWaitLoop::Serve() {
    if (Poll(0) >= 0)
        ServeCompanion();
    LetCompanionWork();
    RunDueThreadTimer();
}

CWaitLoop::Turn CWaitLoop::TakeTurn() {
    const std::int64_t untilEnd = EndRemaining();
    if (IsOver(untilEnd))
        return Fail(ERROR_OPERATION_ABORTED);
    if (AcquireFirst())
        return Turn::Done;

    const std::int64_t remaining = m_deadline.RemainingNanoseconds();
    const std::int64_t patience =
        std::min({PatienceOf(remaining), ThreadTimerRemaining(), untilEnd});
    m_bWatchesEnd = untilEnd == CDeadline::kNever;
    const bool looksOnly =
        patience != 0 && !m_bWorkTried && t_companion != nullptr && t_companion->HasWork();
    const int shown = Poll(looksOnly ? 0 : patience);
    if (shown < 0)
        return errno == EINTR ? Turn::Again : Fail(ErrorFromErrno(errno));
    ServeCompanion();
    RunDueThreadTimer();
    if (IsOver(EndRemaining()))
        return Fail(ERROR_OPERATION_ABORTED);
    if (AcquireAny())
        return Turn::Done;
    if (looksOnly && LetCompanionWork())
        return Turn::Again;
    if (remaining == 0 || (shown == 0 && !looksOnly && patience == remaining))
        return End(WAIT_TIMEOUT);
    return shown == 0 || HandlesAreOpen() ? Turn::Again : Fail(ERROR_INVALID_HANDLE);
}

// The thread was terminated, or the end was asked for and the thread heeds it.
bool CWaitLoop::IsOver(std::int64_t untilEnd) {
    return untilEnd == 0 || CThreadObject::IsCurrentTerminated();
}

// The first handle goes before all others, so that there is nothing to ask the system when it is
// known to be ready.
bool CWaitLoop::AcquireFirst() {
    if (m_dwCount == 0 || !m_objects[0]->IsReady() || !m_objects[0]->TryAcquire(0))
        return false;
    m_dwResult = WAIT_OBJECT_0;
    return true;
}

bool CWaitLoop::AcquireAny() {
    for (DWORD index = 0; index < m_dwCount; ++index) {
        if (m_objects[index]->TryAcquire(m_polled[index].revents)) {
            m_dwResult = WAIT_OBJECT_0 + index;
            return true;
        }
    }
    return false;
}

// How long poll() may block: not at all when an object is ready, no longer than until one becomes
// ready by itself.
std::int64_t CWaitLoop::PatienceOf(std::int64_t remaining) const {
    std::int64_t patience = remaining;
    for (DWORD index = 0; index < m_dwCount && patience != 0; ++index) {
        if (m_objects[index]->IsReady())
            return 0;
        const int readyIn = m_objects[index]->ReadyInMilliseconds();
        if (readyIn >= 0)
            patience = std::min(patience, readyIn * kNanosecondsPerMillisecond);
    }
    return patience;
}

int CWaitLoop::Poll(std::int64_t patience) {
    for (DWORD index = 0; index < m_dwCount; ++index) {
        const CHandleObject& object = *m_objects[index];
        m_polled[index] = {object.WaitDescriptor(), object.WaitEvents(), 0};
    }
    pollfd* const watched = m_polled + m_dwCount;
    m_dwWatched = t_companion != nullptr ? static_cast<DWORD>(t_companion->Watch(watched)) : 0;
    nfds_t count = m_dwCount + m_dwWatched;
    const int termination = CThreadObject::CurrentTerminationDescriptor();
    if (patience != 0 && termination >= 0)
        m_polled[count++] = {termination, POLLIN, 0};
    if (patience != 0 && m_bWatchesEnd && EndDescriptor() >= 0)
        m_polled[count++] = {EndDescriptor(), POLLIN, 0};

    const timespec limit = {patience / kNanosecondsPerSecond, patience % kNanosecondsPerSecond};
    return ppoll(m_polled, count, patience == CDeadline::kNever ? nullptr : &limit, nullptr);
}

void CWaitLoop::ServeCompanion() {
    if (m_dwWatched == 0 || t_companion == nullptr)
        return;
    const pollfd* const watched = m_polled + m_dwCount;
    if (std::any_of(watched, watched + m_dwWatched, [](const pollfd& p) { return p.revents != 0; }))
        m_bWorkTried = false;
    t_companion->Serve(watched, static_cast<int>(m_dwWatched));
}

// False when serving took the companion away.
bool CWaitLoop::LetCompanionWork() {
    if (t_companion == nullptr)
        return false;
    m_bWorkTried = true;
    t_companion->DoWork();
    return true;
}

bool CWaitLoop::HandlesAreOpen() const {
    if (m_handles == nullptr)
        return true;
    for (DWORD index = 0; index < m_dwCount; ++index) {
        if ((m_polled[index].revents & POLLNVAL) != 0 || !FindHandle(m_handles[index]))
            return false;
    }
    return true;
}

CWaitLoop::Turn CWaitLoop::End(DWORD result) {
    m_dwResult = result;
    return Turn::Done;
}

CWaitLoop::Turn CWaitLoop::Fail(DWORD error) {
    SetLastError(error);
    return End(WAIT_FAILED);
}

} // namespace platform
