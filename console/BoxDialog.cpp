#include "console/BoxDialog.h"

#include <algorithm>

namespace platform {
namespace {

static_assert(CBoxLayout::kMostRowBytes <= CConsoleAlternate::kMostText);

bool Closes(BoxKey key) {
    return key == BoxKey::Accept || key == BoxKey::Cancel || key == BoxKey::Closed;
}

} // namespace

bool CBoxDialog::Run() {
    if (m_session.Output().Alternate().LeavingSequence() == nullptr)
        return false;
    bool isShown = Show();
    while (isShown) {
        const BoxKey key = m_keys.Next();
        if (Closes(key))
            break;
        if (key == BoxKey::Redraw)
            isShown = Show();
        else
            Scroll(key);
    }
    m_session.LeaveAlternate();
    return true;
}

// For the first time, and when nothing of what the terminal shows can be relied on.
bool CBoxDialog::Show() {
    CConsoleOutput& output = m_session.Output();
    if (!output.Alternate().IsEntered() && !m_session.EnterAlternate())
        return false;
    CONSOLE_SCREEN_BUFFER_INFO info{};
    output.GetInfo(info);
    m_layout.emplace(m_content, info.dwSize.X, info.dwSize.Y);
    m_nTop = std::min(m_nTop, m_layout->LastTop());
    output.Alternate().Clear();
    Draw();
    return true;
}

// Ends early when the screen is left meanwhile: what shows it again is an event that follows.
void CBoxDialog::Draw() {
    CConsoleAlternate& screen = m_session.Output().Alternate();
    for (const BoxRow& row : m_layout->Rows(m_nTop)) {
        if (!screen.Draw(row.row, row.column, row.text, row.reversed))
            return;
    }
    screen.PlaceCursor(m_layout->ButtonRow(), m_layout->ButtonColumn());
}

void CBoxDialog::Scroll(BoxKey key) {
    const int page = m_layout->PageLines();
    const int last = m_layout->LastTop();
    struct Way {
        BoxKey key;
        int lines;
    };
    const Way ways[] = {{BoxKey::Up, -1},         {BoxKey::Down, 1},     {BoxKey::PageUp, -page},
                        {BoxKey::PageDown, page}, {BoxKey::Home, -last}, {BoxKey::End, last}};
    int top = m_nTop;
    for (const Way& way : ways)
        top += way.key == key ? way.lines : 0;
    top = std::clamp(top, 0, last);
    if (top == m_nTop)
        return;
    m_nTop = top;
    Draw();
}

} // namespace platform
