// All that a wait has to serve comes together here: the signals' descriptor and a terminal that had
// no room are watched beside the wait's own, and what they show is acted on at once. A handler that
// is called on the way may give the console back, so each step looks whether it still has it.
#include "console/ConsoleSession.h"

#include "console/ConsoleSignals.h"

#include <unistd.h>

namespace platform {
namespace {

struct ControlEvent {
    unsigned signal;
    DWORD event;
};

// The end of the session goes before a key.
constexpr ControlEvent kControlEvents[] = {
    {kSignalClose, CTRL_CLOSE_EVENT},
    {kSignalShutdown, CTRL_SHUTDOWN_EVENT},
    {kSignalBreak, CTRL_BREAK_EVENT},
    {kSignalCtrlC, CTRL_C_EVENT},
};

} // namespace

void CConsoleSession::Use(int input, int output, const char* terminalType) {
    m_nInput = input;
    m_nOutput = output;
    m_input.Use(input, terminalType);
    m_output.Use(output, terminalType);
}

void CConsoleSession::TakeOver() {
    if (m_bTakenOver)
        return;
    m_bTakenOver = true;
    m_owner.store(pthread_self());
    consolesignals::Install(m_mode);
    consolesignals::NoteControlEvents(m_handler != nullptr);
    m_input.SetTypedBefore(m_mode.TakeOver(m_nInput, m_nOutput, m_output.IsTerminal()));
    m_input.SetErase(m_mode.EraseCharacter());
    m_output.Begin();
    m_mode.SetRescueOutput(m_output.IsTerminal() ? m_output.WaitDescriptor() : -1);
    SetWaitCompanion(this);
}

void CConsoleSession::GiveBack(Typed typed) {
    if (!m_bTakenOver)
        return;
    m_bTakenOver = false;
    m_mode.SetRescueOutput(m_output.IsTerminal() ? m_nOutput : -1); // the other one is closed now
    m_output.End();
    if (typed == Typed::Dropped && (m_input.WasRead() || !m_input.WasTypedBefore()))
        m_mode.DiscardInput();
    // Whoever sees the terminal as it was may send the next signal, which must not be lost.
    consolesignals::NoteControlEvents(false);
    m_mode.GiveBack();
    m_input.SetTypedBefore(0);
    m_mode.SetTitleChanged(false);
    m_mode.SetScreenBack(nullptr);
    consolesignals::Remove();
    SetWaitCompanion(nullptr);
    m_owner.store(0);
}

void CConsoleSession::GiveBackAtExit() {
    const pthread_t owner = m_owner.load();
    if (owner == 0)
        return;
    if (pthread_equal(owner, pthread_self()) != 0)
        GiveBack();
    else
        m_mode.Rescue();
}

void CConsoleSession::SetHandler(PHANDLER_ROUTINE handler) {
    m_handler = handler;
    consolesignals::NoteControlEvents(m_bTakenOver && handler != nullptr);
}

void CConsoleSession::SetTitle(const char* title) {
    m_output.SetTitle(title);
    m_mode.SetTitleChanged(m_output.IsTitleChanged());
}

bool CConsoleSession::EnterAlternate() {
    if (!m_output.EnterAlternate())
        return false;
    m_mode.SetScreenBack(m_output.Alternate().LeavingSequence());
    return true;
}

void CConsoleSession::LeaveAlternate() {
    if (!m_output.Alternate().IsEntered())
        return;
    m_output.Alternate().Leave();
    m_output.LetOut();
    NoteScreenBack();
}

// The terminal has its first screen only once it has got what leaves the other one.
void CConsoleSession::NoteScreenBack() {
    if (!m_output.Alternate().IsEntered() && m_output.IsAllOut())
        m_mode.SetScreenBack(nullptr);
}

void CConsoleSession::DoWork() {
    m_output.LetOut();
    NoteScreenBack();
}

int CConsoleSession::Watch(pollfd* descriptors) {
    // A shell does not tell a process that already runs.
    if (m_mode.HasComeForward())
        Continue();
    int count = 0;
    if (consolesignals::Descriptor() >= 0)
        descriptors[count++] = {consolesignals::Descriptor(), POLLIN, 0};
    if (m_output.IsStalled())
        descriptors[count++] = {m_output.WaitDescriptor(), POLLOUT, 0};
    return count;
}

void CConsoleSession::Serve(const pollfd* descriptors, int count) {
    const int signals = consolesignals::Descriptor();
    for (int index = 0; index < count && m_bTakenOver; ++index) {
        if (descriptors[index].revents == 0)
            continue;
        if (descriptors[index].fd == signals)
            ServeSignals();
        else
            ContinueOutput();
    }
}

void CConsoleSession::ContinueOutput() {
    m_output.ContinueAfterStall();
    NoteScreenBack();
}

void CConsoleSession::ServeSignals() {
    const unsigned signals = consolesignals::Take();
    if ((signals & kSignalStop) != 0)
        Stop();
    if ((signals & kSignalContinue) != 0)
        Continue();
    if ((signals & kSignalSize) != 0 && m_output.FollowSize())
        m_input.AddEvent(WINDOW_BUFFER_SIZE_EVENT);
    ServeControlEvents(signals);
}

void CConsoleSession::ServeControlEvents(unsigned signals) {
    for (const ControlEvent& control : kControlEvents) {
        if ((signals & control.signal) == 0 || m_handler == nullptr)
            continue;
        LeaveAlternate(); // what the handler writes belongs on the other screen
        // Without a keyboard Ctrl+C cannot be meant for the device.
        const bool isKey = control.event == CTRL_C_EVENT && isatty(m_nInput) != 0;
        m_handler(control.event == CTRL_C_EVENT && !isKey ? CTRL_BREAK_EVENT : control.event);
        m_input.AddEvent(MENU_EVENT);
    }
    consolesignals::StandDown();
}

void CConsoleSession::Stop() {
    m_output.Suspend();
    m_mode.GiveBack();
    m_mode.SetScreenBack(nullptr);
    consolesignals::StopProcess();
    Continue();
}

// The shell may have set the terminal up for itself meanwhile.
void CConsoleSession::Continue() {
    // None says nothing of those counted before: they may not have been read yet.
    if (const std::size_t typed = m_mode.TakeAgain(); typed != 0 || m_input.IsSomebodyElses())
        m_input.SetTypedBefore(typed);
    m_input.SetErase(m_mode.EraseCharacter());
    if (m_output.Resume() || m_bRedraws)
        m_input.AddEvent(WINDOW_BUFFER_SIZE_EVENT);
}

} // namespace platform
