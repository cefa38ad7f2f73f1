#include "tests/console/Terminal.h"

#include <pty.h>
#include <sys/ioctl.h>

namespace {

// Between what the tests show: never sent by the console.
constexpr char MARK = 0;

winsize SizeOf(int columns, int rows) {
    return {static_cast<unsigned short>(rows), static_cast<unsigned short>(columns), 0, 0};
}

} // namespace

CTerminal::CTerminal(int columns, int rows) : m_screen(rows, columns) {
    int master = -1;
    int slave = -1;
    termios mode{};
    cfmakeraw(&mode);
    const winsize size = SizeOf(columns, rows);
    EXPECT_EQ(openpty(&master, &slave, nullptr, &mode, &size), 0);
    m_master.Reset(master);
    m_slave.Reset(slave);
}

void CTerminal::Show(platform::CConsoleOutput& output) {
    output.LetOut();
    while (output.IsStalled()) {
        if (DrawSome())
            return;
        output.ContinueAfterStall();
    }
    Catch();
}

void CTerminal::Catch() {
    ASSERT_EQ(write(Slave(), &MARK, 1), 1);
    while (!DrawSome())
        continue;
}

bool CTerminal::DrawSome() {
    char bytes[4096];
    const ssize_t count = read(Master(), bytes, sizeof bytes);
    EXPECT_GT(count, 0);
    const std::string_view text(bytes, static_cast<std::size_t>(std::max<ssize_t>(count, 0)));
    const std::string_view shown = text.substr(0, text.find(MARK));
    m_raw += shown;
    m_screen.Feed(shown);
    return shown.size() < text.size() || count <= 0;
}

void CTerminal::Resize(int columns, int rows) {
    const winsize size = SizeOf(columns, rows);
    ASSERT_EQ(ioctl(Master(), TIOCSWINSZ, &size), 0);
    m_screen.Resize(rows, columns);
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
