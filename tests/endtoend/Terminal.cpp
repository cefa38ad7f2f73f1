#include "tests/endtoend/Terminal.h"

#include <poll.h>

CTerminal::CTerminal() : m_screen(kRows, kColumns) {
    m_line.SetSize(kRows, kColumns);
}

void CTerminal::Resize(int rows, int columns) {
    m_screen.Resize(rows, columns);
    m_line.SetSize(rows, columns);
}

short CTerminal::GetEvents() const {
    return static_cast<short>((m_bReading ? POLLIN : 0) | (m_typed.IsEmpty() ? 0 : POLLOUT));
}

void CTerminal::OnReady(short events) {
    if (events & POLLOUT)
        m_line.Write(m_typed);
    if (!(events & POLLIN))
        return;
    const std::string bytes = m_line.Read(65536);
    m_output += bytes;
    m_screen.Feed(bytes);
}
