// The console as a whole: screen, keyboard, line modes and signals of the user's terminal, taken
// over and given back together, and served while the thread that has taken them over waits.
//
// The one object lives as long as the process. TakeOver makes the calling thread the console's; all
// else belongs to that thread. GiveBack may be called by a control handler, which runs inside of a
// wait's serving.
#pragma once

#include "console/ConsoleInput.h"
#include "console/ConsoleMode.h"
#include "console/ConsoleOutput.h"
#include "platform/objects/WaitCompanion.h"

#include <atomic>
#include <pthread.h>

namespace platform {

class CConsoleSession final : public IWaitCompanion {
  public:
    CConsoleSession(CConsoleInput& input, CConsoleOutput& output)
        : m_input(input), m_output(output) {}

    // Takes the descriptors; the operations below work on them from then on. Done once.
    void Use(int input, int output, const char* terminalType);

    CConsoleInput& Input() { return m_input; }
    CConsoleOutput& Output() { return m_output; }

    bool IsTakenOver() const { return m_bTakenOver; }
    // Any thread may ask: whether the calling thread has taken the console over, and whether
    // another one has.
    bool IsMine() const { return pthread_equal(m_owner.load(), pthread_self()) != 0; }
    bool IsAnothers() const { return m_owner.load() != 0 && !IsMine(); }
    void TakeOver();
    // Typed: what becomes of the keys that were typed and not taken. They were meant for whoever
    // had the console: a shell would carry the rest of a paste out. Only where no key was taken,
    // and the first were typed before, are they the shell's.
    enum class Typed { Dropped, Kept };
    void GiveBack(Typed typed = Typed::Dropped);
    // As GiveBack, when the process ends by exit() on whichever thread.
    void GiveBackAtExit();

    // Null takes the handler away.
    PHANDLER_ROUTINE Handler() const { return m_handler; }
    void SetHandler(PHANDLER_ROUTINE handler);

    void SetTitle(const char* title);

    // The alternate screen, which a control event and a stop of the process leave as well. Enter
    // returns FALSE when the terminal has none and when output is gone.
    bool EnterAlternate();
    void LeaveAlternate();
    // While the user is shown something that has to be shown again after the process was stopped, a
    // size event is added then.
    void SetRedraws(bool redraws) { m_bRedraws = redraws; }

    bool HasWork() const override { return m_output.HasWork(); }
    void DoWork() override;
    int Watch(pollfd* descriptors) override;
    void Serve(const pollfd* descriptors, int count) override;

  private:
    void ContinueOutput();
    void ServeSignals();
    void ServeControlEvents(unsigned signals);
    void Stop();
    void Continue();
    void NoteScreenBack();

    CConsoleInput& m_input;
    CConsoleOutput& m_output;
    CConsoleMode m_mode;
    PHANDLER_ROUTINE m_handler = nullptr;
    std::atomic<pthread_t> m_owner = 0; // the thread that has taken the console over
    int m_nInput = -1;
    int m_nOutput = -1;
    bool m_bTakenOver = false;
    bool m_bRedraws = false;
};

// The process's console, made when it is first asked for; null when there is no room for its
// handles.
CConsoleSession* TheConsoleSession();

} // namespace platform
