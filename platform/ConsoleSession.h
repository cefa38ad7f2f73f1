// The console as a whole: screen, keyboard, line modes and signals of the user's terminal, taken
// over and given back together, and served while the thread that has taken them over waits.
//
// The one object lives as long as the process. TakeOver makes the calling thread the console's; all
// else belongs to that thread. GiveBack may be called by a control handler, which runs inside of a
// wait's serving.
#pragma once

#include "platform/ConsoleInput.h"
#include "platform/ConsoleMode.h"
#include "platform/ConsoleOutput.h"

#include <atomic>
#include <pthread.h>

namespace platform {

class CConsoleSession final : public IWaitCompanion {
  public:
    CConsoleSession(CConsoleInput& input, CConsoleOutput& output)
        : m_input(input), m_output(output) {}

    // Takes the descriptors; the operations below work on them from then on. Done once.
    void Use(int input, int output, const char* terminalType);

    bool IsTakenOver() const { return m_bTakenOver; }
    void TakeOver();
    void GiveBack();
    // As GiveBack, when the process ends by exit() on whichever thread.
    void GiveBackAtExit();

    // Null takes the handler away.
    PHANDLER_ROUTINE Handler() const { return m_handler; }
    void SetHandler(PHANDLER_ROUTINE handler);

    void SetTitle(const char* title);

    bool HasWork() const override { return m_output.HasWork(); }
    void DoWork() override { m_output.LetOut(); }
    int Watch(pollfd* descriptors) override;
    void Serve(const pollfd* descriptors, int count) override;

  private:
    void ServeSignals();
    void ServeControlEvents(unsigned signals);
    void Stop();
    void Continue();

    CConsoleInput& m_input;
    CConsoleOutput& m_output;
    CConsoleMode m_mode;
    PHANDLER_ROUTINE m_handler = nullptr;
    std::atomic<pthread_t> m_owner = 0; // the thread that has taken the console over
    int m_nInput = -1;
    int m_nOutput = -1;
    bool m_bTakenOver = false;
};

} // namespace platform
