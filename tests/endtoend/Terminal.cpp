#include "tests/endtoend/Terminal.h"

CTerminal::CTerminal() : CDevice(false), m_screen(kRows, kColumns) {
    Resize(kRows, kColumns);
}

void CTerminal::Resize(int rows, int columns) {
    m_screen.Resize(rows, columns);
    GetLine().SetSize(rows, columns);
}
