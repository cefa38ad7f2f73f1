// A thread is told to end by a flag and a descriptor that all of its waits watch; nothing is
// cancelled. Its own reference to this object goes last, with the end of Main.
#include "platform/objects/ThreadObject.h"

#include "platform/Error.h"

#include <sys/eventfd.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <utility>

namespace platform {
namespace {

// The calling thread's own object, which its Main() keeps alive.
thread_local CThreadObject* t_current = nullptr;

// Signals are for the threads that were there before: a new thread takes over the mask of the one
// that makes it. Those that a fault of the thread itself raises stay open, whoever handles crashes
// must hear of them.
class CSignalsBlocked {
  public:
    CSignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        for (const int fault : {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGABRT, SIGTRAP, SIGSYS})
            sigdelset(&all, fault);
        pthread_sigmask(SIG_SETMASK, &all, &m_former);
    }
    CSignalsBlocked(const CSignalsBlocked&) = delete;
    CSignalsBlocked& operator=(const CSignalsBlocked&) = delete;
    ~CSignalsBlocked() { pthread_sigmask(SIG_SETMASK, &m_former, nullptr); }

  private:
    sigset_t m_former;
};

class CThreadAttributes {
  public:
    CThreadAttributes() { pthread_attr_init(&m_attributes); }
    CThreadAttributes(const CThreadAttributes&) = delete;
    CThreadAttributes& operator=(const CThreadAttributes&) = delete;
    ~CThreadAttributes() { pthread_attr_destroy(&m_attributes); }

    // 0 leaves the default; others are rounded up to what the system can do.
    int SetStackSize(std::size_t size) {
        if (size == 0)
            return 0;
        const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
        const auto least = static_cast<std::size_t>(sysconf(_SC_THREAD_STACK_MIN));
        const std::size_t wanted = std::max(size, least);
        if (wanted > SIZE_MAX - page)
            return EINVAL;
        return pthread_attr_setstacksize(&m_attributes, (wanted + page - 1) / page * page);
    }
    const pthread_attr_t* Get() const { return &m_attributes; }

  private:
    pthread_attr_t m_attributes;
};

} // namespace

CThreadObject::~CThreadObject() {
    if (!m_bStarted)
        return;
    if (pthread_equal(m_thread, pthread_self()))
        pthread_detach(m_thread);
    else
        pthread_join(m_thread, nullptr);
}

BOOL CThreadObject::Create() {
    m_ended.Reset(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    if (!m_ended)
        return FailWithErrno();
    m_termination.Reset(eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK));
    return m_termination ? TRUE : FailWithErrno();
}

BOOL CThreadObject::Start(const std::shared_ptr<CThreadObject>& self, std::size_t stackSize) {
    CThreadAttributes attributes;
    int failure = attributes.SetStackSize(stackSize);
    if (failure != 0)
        return FailWith(ERROR_INVALID_PARAMETER);
    m_self = self;
    m_bStarted = true;
    {
        const CSignalsBlocked signalsBlocked;
        failure = pthread_create(&m_thread, attributes.Get(), &CThreadObject::Main, this);
    }
    if (failure == 0)
        return TRUE;
    m_bStarted = false;
    m_self.reset();
    return FailWith(ErrorFromErrno(failure));
}

void* CThreadObject::Main(void* argument) {
    const auto self = std::move(static_cast<CThreadObject*>(argument)->m_self);
    t_current = self.get();
    self->Run();
    t_current = nullptr;
    return nullptr;
}

void CThreadObject::Run() {
    m_identifier = gettid();
    m_identifier.notify_all();
    m_bSuspended.wait(true);
    const DWORD result = m_bTerminated ? 0 : m_procedure(m_parameter);
    DWORD running = kStillRunning;
    m_dwExitCode.compare_exchange_strong(running, result);
    const std::lock_guard lock(m_mutex);
    m_bEnded.store(true, std::memory_order_release);
    eventfd_write(m_ended.Get(), 1);
}

void CThreadObject::Terminate(DWORD exitCode) {
    DWORD running = kStillRunning;
    m_dwExitCode.compare_exchange_strong(running, exitCode);
    if (!m_bTerminated.exchange(true))
        eventfd_write(m_termination.Get(), 1);
    Resume();
}

DWORD CThreadObject::Resume() {
    const bool wasSuspended = m_bSuspended.exchange(false);
    m_bSuspended.notify_all();
    return wasSuspended ? 1 : 0;
}

BOOL CThreadObject::SetNice(int nice) {
    const auto identifier = static_cast<pid_t>(Identifier());
    const std::lock_guard lock(m_mutex);
    // The number of an ended thread may have become another one's.
    return m_bEnded ? TRUE : SetThreadNice(identifier, nice);
}

DWORD CThreadObject::Identifier() const {
    m_identifier.wait(0);
    return static_cast<DWORD>(m_identifier.load());
}

bool CThreadObject::IsCurrentTerminated() {
    return t_current != nullptr && t_current->m_bTerminated.load(std::memory_order_acquire);
}

int CThreadObject::CurrentTerminationDescriptor() {
    return t_current != nullptr ? t_current->m_termination.Get() : -1;
}

BOOL SetThreadNice(pid_t thread, int nice) {
    if (setpriority(PRIO_PROCESS, static_cast<id_t>(thread), nice) == 0)
        return TRUE;
    return errno == EACCES || errno == EPERM ? TRUE : FailWithErrno();
}

} // namespace platform
