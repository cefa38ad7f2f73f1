#include "tests/console/Terminal.h"

#include <gtest/gtest.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

// Between what the tests show: never sent by the console.
constexpr char MARK = 0;

void AppendUtf8(std::string& text, std::uint32_t code) {
    const auto tail = [&](int shift) {
        text += static_cast<char>(0x80 | ((code >> shift) & 0x3F));
    };
    if (code < 0x80) {
        text += static_cast<char>(code);
    } else if (code < 0x800) {
        text += static_cast<char>(0xC0 | (code >> 6));
        tail(0);
    } else if (code < 0x10000) {
        text += static_cast<char>(0xE0 | (code >> 12));
        tail(6);
        tail(0);
    } else {
        text += static_cast<char>(0xF0 | (code >> 18));
        tail(12);
        tail(6);
        tail(0);
    }
}

void AppendCell(std::string& text, const VTermScreenCell& cell) {
    constexpr std::uint32_t SECOND_HALF = 0xFFFFFFFF; // of a wide character
    if (cell.chars[0] == SECOND_HALF)
        return;
    if (cell.chars[0] == 0)
        text += ' ';
    for (int index = 0; index < VTERM_MAX_CHARS_PER_CELL && cell.chars[index] != 0; ++index)
        AppendUtf8(text, cell.chars[index]);
}

std::string WithoutEnd(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

} // namespace

CTerminal::CTerminal(int columns, int rows) : m_terminal(vterm_new(rows, columns)) {
    int master = -1;
    int slave = -1;
    termios mode{};
    cfmakeraw(&mode);
    winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
    EXPECT_EQ(openpty(&master, &slave, nullptr, &mode, &size), 0);
    m_master.Reset(master);
    m_slave.Reset(slave);
    static constexpr VTermScreenCallbacks CALLBACKS = {nullptr, nullptr, nullptr,  SetProperty,
                                                       Ring,    nullptr, PushLine, nullptr};
    vterm_set_utf8(m_terminal, 1);
    m_screen = vterm_obtain_screen(m_terminal);
    vterm_screen_set_callbacks(m_screen, &CALLBACKS, this);
    vterm_screen_reset(m_screen, 1);
}

CTerminal::~CTerminal() {
    vterm_free(m_terminal);
}

void CTerminal::Show(platform::CConsoleOutput& output) {
    output.LetOut();
    while (output.IsStalled()) {
        char bytes[4096];
        const ssize_t count = read(m_master.Get(), bytes, sizeof bytes);
        ASSERT_GT(count, 0);
        Draw(bytes, static_cast<std::size_t>(count));
        output.ContinueAfterStall();
    }
    Catch();
}

void CTerminal::Catch() {
    ASSERT_EQ(write(m_slave.Get(), &MARK, 1), 1);
    for (;;) {
        char bytes[4096];
        const ssize_t count = read(m_master.Get(), bytes, sizeof bytes);
        ASSERT_GT(count, 0);
        const std::string_view text(bytes, static_cast<std::size_t>(count));
        const std::size_t mark = text.find(MARK);
        Draw(bytes, mark == std::string_view::npos ? text.size() : mark);
        if (mark != std::string_view::npos)
            return;
    }
}

void CTerminal::Draw(const char* bytes, std::size_t count) {
    m_raw.append(bytes, count);
    vterm_input_write(m_terminal, bytes, count);
}

void CTerminal::Resize(int columns, int rows) {
    const winsize size{static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0,
                       0};
    ASSERT_EQ(ioctl(m_master.Get(), TIOCSWINSZ, &size), 0);
    vterm_set_size(m_terminal, rows, columns);
}

VTermPos CTerminal::Cursor() const {
    VTermPos position;
    vterm_state_get_cursorpos(vterm_obtain_state(m_terminal), &position);
    return position;
}

VTermScreenCell CTerminal::Cell(int column, int row) const {
    VTermScreenCell cell{};
    vterm_screen_get_cell(m_screen, {row, column}, &cell);
    return cell;
}

std::string CTerminal::Row(int row) const {
    int rows = 0;
    int columns = 0;
    vterm_get_size(m_terminal, &rows, &columns);
    std::string text;
    for (int column = 0; column < columns; ++column)
        AppendCell(text, Cell(column, row));
    return WithoutEnd(text);
}

int CTerminal::PushLine(int columns, const VTermScreenCell* cells, void* user) {
    std::string text;
    for (int column = 0; column < columns; ++column)
        AppendCell(text, cells[column]);
    static_cast<CTerminal*>(user)->m_scrollback.push_back(WithoutEnd(text));
    return 1;
}

int CTerminal::SetProperty(VTermProp property, VTermValue* value, void* user) {
    if (property == VTERM_PROP_TITLE)
        static_cast<CTerminal*>(user)->m_title = value->string;
    return 1;
}

int CTerminal::Ring(void* user) {
    ++static_cast<CTerminal*>(user)->m_bells;
    return 1;
}

bool Write(platform::CConsoleOutput& output, std::string_view text) {
    return output.Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}

bool FillCells(platform::CConsoleOutput& output, int column, int row, int count,
               std::uint8_t attribute, char character) {
    const COORD start = {static_cast<SHORT>(column), static_cast<SHORT>(row)};
    const auto length = static_cast<DWORD>(count);
    return output.Fill(character, length, start) >= 0 &&
           output.ColourFill(attribute, length, start);
}

COORD CursorOf(platform::CConsoleOutput& output) {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    output.GetInfo(info);
    return info.dwCursorPosition;
}

Console::Console(int columns, int rows, const char* type)
    : terminal(columns, rows), held(std::make_unique<platform::CConsoleOutput>()), output(*held) {
    output.Use(terminal.Slave(), type);
    output.Begin();
}

void Console::Clear() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    output.GetInfo(info);
    FillCells(output, 0, 0, info.dwSize.X * info.dwSize.Y, 0x07);
    output.SetPosition({0, 0});
    Show();
    terminal.ForgetRaw();
}
