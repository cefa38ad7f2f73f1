// One table says what each final character does; whoever uses parameters takes them out of what was
// collected, so that a sequence costs what it needs and no more.
#include "terminal/AnsiConsole.h"

#include "modem/Modem.h"
#include "terminal/EscapeParameters.h"
#include "terminal/GraphicRendition.h"

#include <cstdio>

namespace {

struct KeySequence {
    WORD key;
    const char* bytes;
};

constexpr std::array kKeySequences = {
    KeySequence{VK_PRIOR, "\x1B[I"},  KeySequence{VK_NEXT, "\x1B[G"},
    KeySequence{VK_END, "\x1B[F"},    KeySequence{VK_HOME, "\x1B[H"},
    KeySequence{VK_LEFT, "\x1B[D"},   KeySequence{VK_UP, "\x1B[A"},
    KeySequence{VK_RIGHT, "\x1B[C"},  KeySequence{VK_DOWN, "\x1B[B"},
    KeySequence{VK_INSERT, "\x1B[L"}, KeySequence{VK_DELETE, "\x7F"},
    KeySequence{VK_F1, "\x1BOP"},     KeySequence{VK_F2, "\x1BOQ"},
    KeySequence{VK_F3, "\x1BOR"},     KeySequence{VK_F4, "\x1BOS"},
};

} // namespace

constexpr CAnsiConsole::Command CAnsiConsole::kCommands[] = {
    {'@', [](CAnsiConsole& screen) { screen.InsertChar(); }},
    {'A', [](CAnsiConsole& screen) { screen.CursorUp(screen.Count()); }},
    {'B', [](CAnsiConsole& screen) { screen.CursorDown(screen.Count()); }},
    {'C', [](CAnsiConsole& screen) { screen.CursorForward(screen.Count()); }},
    {'D', [](CAnsiConsole& screen) { screen.CursorBack(screen.Count()); }},
    {'E', [](CAnsiConsole& screen) { screen.MoveToNextLines(screen.Count()); }},
    {'F', [](CAnsiConsole& screen) { screen.MoveTo(); }},
    {'H', [](CAnsiConsole& screen) { screen.MoveTo(); }},
    {'J', [](CAnsiConsole& screen) { screen.EraseInScreen(); }},
    {'K', [](CAnsiConsole& screen) { screen.EraseInLine(); }},
    {'L', [](CAnsiConsole& screen) { screen.InsertLine(); }},
    {'M', [](CAnsiConsole& screen) { screen.DeleteLine(); }},
    {'P', [](CAnsiConsole& screen) { screen.DeleteChar(); }},
    {'S', [](CAnsiConsole& screen) { screen.ScrollUp(1); }},
    {'T', [](CAnsiConsole& screen) { screen.ScrollDown(1); }},
    {'U', [](CAnsiConsole& screen) { screen.ClearScreen(); }},
    {'Z', [](CAnsiConsole&) {}},
    {'f', [](CAnsiConsole& screen) { screen.MoveTo(); }},
    {'m', [](CAnsiConsole& screen) { screen.SelectGraphicRendition(); }},
    {'n', [](CAnsiConsole& screen) { screen.ReportStatus(); }},
    {'r', [](CAnsiConsole& screen) { screen.SelectScrollRegion(); }},
    {'s', [](CAnsiConsole& screen) { screen.SaveCursor(); }},
    {'u', [](CAnsiConsole& screen) { screen.RestoreCursor(); }},
};

// The commands by their final character, so that a sequence costs no search.
constexpr decltype(CAnsiConsole::kActions) CAnsiConsole::kActions = [] {
    std::array<Action, kLastFinal - kFirstFinal + 1> actions{};
    for (const Command& command : kCommands)
        actions[static_cast<std::size_t>(command.finalCharacter - kFirstFinal)] = command.action;
    return actions;
}();

void CAnsiConsole::PutText(std::span<const BYTE> bytes) {
    while (!bytes.empty()) {
        const EscapeVerdict verdict = m_parser.Next(bytes);
        if (verdict.kind == EscapeVerdict::Kind::Text)
            WriteText(verdict.text.data(), static_cast<DWORD>(verdict.text.size()));
        else if (verdict.kind == EscapeVerdict::Kind::Sequence)
            ProcessEscape(verdict.finalCharacter);
    }
}

BOOL CAnsiConsole::ProcessEscape(BYTE finalCharacter) {
    if (finalCharacter < kFirstFinal || finalCharacter > kLastFinal)
        return FALSE;
    const Action action = kActions[static_cast<std::size_t>(finalCharacter - kFirstFinal)];
    if (!action)
        return FALSE;
    action(*this);
    return TRUE;
}

int CAnsiConsole::Count() const {
    return CEscapeParameters::Value(m_parser.Parameters()).value_or(1);
}

void CAnsiConsole::ReadTwo(int& first, int& second) const {
    CEscapeParameters parameters(m_parser.Parameters());
    const std::optional<int> firstValue = parameters.Next();
    if (!firstValue)
        return;
    first = *firstValue;
    second = parameters.Next().value_or(second);
}

void CAnsiConsole::MoveToNextLines(int count) {
    for (; count > 0; --count)
        NewLine();
}

void CAnsiConsole::MoveTo() {
    int row = 1;
    int column = 1;
    ReadTwo(row, column);
    SetCursorPosition(row - 1, column - 1);
}

void CAnsiConsole::EraseInScreen() {
    if (FirstParameterCharacter() == '1')
        return EraseToScreenStart();
    if (FirstParameterCharacter() == '2')
        return ClearScreen();
    EraseToScreenEnd();
}

void CAnsiConsole::EraseInLine() {
    if (FirstParameterCharacter() == '1')
        return EraseToLineStart();
    if (FirstParameterCharacter() == '2')
        return EraseWholeLine();
    EraseToLineEnd();
}

void CAnsiConsole::EraseWholeLine() {
    int column;
    int row;
    GetCursor(column, row);
    SetCursorPosition(row, 0);
    EraseToLineEnd();
    SetCursorPosition(row, column);
}

void CAnsiConsole::SelectGraphicRendition() {
    if (FirstParameterCharacter() == 'm') {
        m_wExactColors = 0;
        SetColors(m_nDefaultForeground, m_nDefaultBackground);
        SetAttributeFlags(0);
        return;
    }
    CEscapeParameters parameters(m_parser.Parameters());
    while (const std::optional<int> parameter = parameters.Next()) {
        GraphicRendition rendition = {m_byAttribute & 0x0F, m_byAttribute >> 4, GetAttributeFlags(),
                                      m_wExactColors};
        ApplyGraphicRendition(*parameter, rendition);
        m_wExactColors = rendition.exact;
        SetColors(rendition.foreground, rendition.background);
        SetAttributeFlags(rendition.flags);
    }
}

void CAnsiConsole::ReportStatus() {
    if (FirstParameterCharacter() == '6')
        ReportCursor();
}

// A report that does not fit into the transmit buffer is dropped: a device that goes on asking and
// never reads must not stop the terminal.
void CAnsiConsole::ReportCursor() {
    if (!m_pModem)
        return;
    int column;
    int row;
    GetCursor(column, row);
    std::array<char, 32> report;
    const int length =
        std::snprintf(report.data(), report.size(), "\x1B[%d;%dR", row + 1, column + 1);
    if (m_pModem->GetWriteRoom() >= static_cast<DWORD>(length))
        m_pModem->SendString(report.data());
}

void CAnsiConsole::SelectScrollRegion() {
    constexpr int kLastBottom = 24;
    int top = 1;
    int bottom = kLastBottom;
    ReadTwo(top, bottom);
    top = top == 1 ? 1 : top - 1;
    bottom = bottom == 1 ? kLastBottom : bottom - 1;
    if (bottom > kLastBottom || bottom <= top)
        return;
    SetScrollRegion(top, 0, bottom, 0);
}

void CAnsiConsole::SaveCursor() {
    int row;
    GetCursor(m_nSavedColumn, row);
    m_nSavedRow = row - m_nTopRow;
}

void CAnsiConsole::RestoreCursor() {
    SetCursorPosition(m_nSavedRow, m_nSavedColumn);
}

std::string_view CAnsiConsole::GetKeySequence(WORD key) {
    for (const KeySequence& row : kKeySequences)
        if (row.key == key)
            return row.bytes;
    return {};
}

BOOL CAnsiConsole::OnKey(DWORD key, BYTE*) {
    const std::string_view sequence = GetKeySequence(static_cast<WORD>(key & 0xFFFF));
    if (!sequence.empty() && m_pModem)
        m_pModem->SendString(sequence.data());
    return FALSE;
}
