#include "console/ConsoleVisit.h"

#include "platform/Wait.h"

namespace platform {
namespace {

thread_local bool t_bVisits = false;

// Signalled while nobody visits; null when there was no descriptor for it.
HANDLE Turn() {
    static const HANDLE hTurn = CreateEventA(nullptr, FALSE, TRUE, nullptr);
    return hTurn;
}

} // namespace

CConsoleVisit::CConsoleVisit(CConsoleSession& session) : m_session(session) {
    if (t_bVisits || WaitForSingleObject(Turn(), INFINITE) != WAIT_OBJECT_0)
        return;
    t_bVisits = m_bHasTurn = true;
    if (m_session.IsAnothers())
        return;
    m_bHasConsole = true;
    m_bTakesOver = !m_session.IsTakenOver();
    if (m_bTakesOver)
        m_session.TakeOver();
}

CConsoleVisit::~CConsoleVisit() {
    if (m_bTakesOver)
        m_session.GiveBack(CConsoleSession::Typed::Kept);
    if (!m_bHasTurn)
        return;
    t_bVisits = false;
    SetEvent(Turn());
}

} // namespace platform
