#include "console/BoxDialog.h"

#include <algorithm>
#include <cstdio>

namespace platform {
namespace {

// The longest of everything that goes with a row: to its place, reversed and back, the rest erased.
constexpr std::size_t MOST_SEQUENCE_BYTES = sizeof "\x1b[32767;32767H\x1b[7m\x1b[0m\x1b[K";
static_assert(CBoxLayout::MOST_ROW_BYTES + MOST_SEQUENCE_BYTES <= CConsoleGather::UNIT);

std::string To(int column, int row) {
    char sequence[32]; // with any numbers
    std::snprintf(sequence, sizeof sequence, "\x1b[%d;%dH", row + 1, column + 1);
    return sequence;
}

bool Closes(BoxKey key) {
    return key == BoxKey::ACCEPT || key == BoxKey::CANCEL || key == BoxKey::CLOSED;
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
        if (key == BoxKey::REDRAW)
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
    output.Alternate().Put("\x1b[0m\x1b[H\x1b[J");
    Draw();
    return true;
}

// Ends early when the screen is left meanwhile: what shows it again is an event that follows.
void CBoxDialog::Draw() {
    for (const BoxRow& row : m_layout->Rows(m_nTop)) {
        if (!DrawRow(row))
            return;
    }
    m_session.Output().Alternate().Put(To(m_layout->ButtonColumn(), m_layout->ButtonRow()));
}

bool CBoxDialog::DrawRow(const BoxRow& row) {
    std::string unit = To(row.column, row.row);
    if (row.reversed)
        unit += "\x1b[7m";
    unit += row.text;
    unit += row.reversed ? "\x1b[0m" : "\x1b[K";
    return m_session.Output().Alternate().Put(unit);
}

void CBoxDialog::Scroll(BoxKey key) {
    const int page = m_layout->PageLines();
    const int last = m_layout->LastTop();
    struct Way {
        BoxKey key;
        int lines;
    };
    const Way ways[] = {{BoxKey::UP, -1},          {BoxKey::DOWN, 1},     {BoxKey::PAGE_UP, -page},
                        {BoxKey::PAGE_DOWN, page}, {BoxKey::HOME, -last}, {BoxKey::END, last}};
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
