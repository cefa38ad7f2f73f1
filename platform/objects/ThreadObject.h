// A thread: the procedure it runs, its end, and the request to end it. Nothing outside platform/
// includes this header.
//
// Shared between the handle table and the running thread itself, so that what the thread's waits
// look at stays in place however early its handle is closed. The one that lets go last, the thread
// itself or the closer of the handle of an ended thread, gives the system's thread back.
#pragma once

#include "platform/Thread.h"
#include "platform/objects/Descriptor.h"
#include "platform/objects/HandleObject.h"

#include <sys/types.h>

#include <atomic>
#include <memory>
#include <mutex>

namespace platform {

class CThreadObject final : public CHandleObject {
  public:
    CThreadObject(LPTHREAD_START_ROUTINE procedure, LPVOID parameter, bool isSuspended)
        : m_procedure(procedure), m_parameter(parameter), m_bSuspended(isSuspended) {}
    ~CThreadObject() override;

    // Gets the descriptors. FALSE with ERROR_TOO_MANY_OPEN_FILES or ERROR_NOT_ENOUGH_MEMORY.
    BOOL Create();

    // Starts the system's thread, which keeps self. FALSE with ERROR_NOT_ENOUGH_MEMORY or
    // ERROR_INVALID_PARAMETER (no usable stack size).
    BOOL Start(const std::shared_ptr<CThreadObject>& self, std::size_t stackSize);

    // Lets the procedure begin. Returns how often the thread was suspended, 1 or 0.
    DWORD Resume();

    // See TerminateThread. An ended thread stays as it is.
    void Terminate(DWORD exitCode);

    // Asks for a nice value; without effect once the thread has ended. FALSE with the last error
    // set.
    BOOL SetNice(int nice);

    // The system's number of the thread; waits until a thread just started has told it.
    DWORD Identifier() const;

    // What the procedure returned or Terminate was given; 259 while the thread runs.
    DWORD ExitCode() const { return m_dwExitCode; }

    int WaitDescriptor() const override { return m_ended.Get(); }
    bool IsReady() const override { return m_bEnded.load(std::memory_order_acquire); }
    bool TryAcquire(short) override { return IsReady(); }

    // Of the calling thread: whether TerminateThread has named it, and the descriptor that shows
    // POLLIN from then on. False and -1 on a thread that CreateThread did not start.
    static bool IsCurrentTerminated();
    static int CurrentTerminationDescriptor();

  private:
    static void* Main(void* argument);
    void Run();

    static constexpr DWORD kStillRunning = 259;

    const LPTHREAD_START_ROUTINE m_procedure;
    const LPVOID m_parameter;
    std::shared_ptr<CThreadObject> m_self; // handed from Start to the new thread
    pthread_t m_thread{};
    bool m_bStarted = false;
    std::atomic<pid_t> m_identifier = 0;
    std::atomic<DWORD> m_dwExitCode = kStillRunning;
    std::atomic<bool> m_bTerminated = false;
    std::atomic<bool> m_bSuspended;
    std::atomic<bool> m_bEnded = false;
    std::mutex m_mutex; // the thread does not end while its priority is being set
    CDescriptor m_ended;
    CDescriptor m_termination;
};

// Asks for the nice value of a thread of this process (0: the calling one). An administrator's
// refusal counts as success. FALSE with the last error set.
BOOL SetThreadNice(pid_t thread, int nice);

} // namespace platform
