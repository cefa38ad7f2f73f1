#include "tests/console/ShownConsole.h"

#include <poll.h>

namespace {

// Between what the tests show: never sent by the console.
constexpr char kMark = 0;

constexpr int kStuckMilliseconds = 45'000;

} // namespace

CShownConsole::CShownConsole(int columns, int rows) : screen(rows, columns) {
    termios raw = line.GetSettings();
    cfmakeraw(&raw);
    line.ApplySettings(raw);
    line.SetSize(rows, columns);
    output.Use(line.GetSlave(), "xterm-256color");
    output.Begin();
}

void CShownConsole::Clear() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    output.GetInfo(info);
    Fill(0, 0, info.dwSize.X * info.dwSize.Y, 0x07);
    output.SetPosition({0, 0});
    Show();
}

bool CShownConsole::Write(std::string_view text) {
    return ::Write(output, text);
}

bool CShownConsole::Fill(int column, int row, int count, std::uint8_t attribute, char character) {
    const COORD start = {static_cast<SHORT>(column), static_cast<SHORT>(row)};
    const auto length = static_cast<DWORD>(count);
    return output.Fill(character, length, start) >= 0 &&
           output.ColourFill(attribute, length, start);
}

COORD CShownConsole::GetCursor() {
    CONSOLE_SCREEN_BUFFER_INFO info{};
    output.GetInfo(info);
    return info.dwCursorPosition;
}

void CShownConsole::Show() {
    output.LetOut();
    while (output.IsStalled()) {
        if (DrawSome())
            return;
        output.ContinueAfterStall();
    }
    Catch();
}

void CShownConsole::Catch() {
    ASSERT_EQ(write(line.GetSlave(), &kMark, 1), 1);
    while (!DrawSome())
        continue;
}

bool CShownConsole::DrawSome() {
    pollfd arrival = {line.GetMaster(), POLLIN, 0};
    EXPECT_EQ(poll(&arrival, 1, kStuckMilliseconds), 1);
    const std::string text = line.Read(4096);
    const std::size_t mark = text.find(kMark);
    screen.Feed(std::string_view(text).substr(0, mark));
    return mark != std::string::npos || text.empty();
}

void CShownConsole::Resize(int columns, int rows) {
    line.SetSize(rows, columns);
    screen.Resize(rows, columns);
}

bool Write(platform::CConsoleOutput& output, std::string_view text) {
    return output.Write(reinterpret_cast<const std::uint8_t*>(text.data()), text.size());
}
