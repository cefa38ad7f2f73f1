// The published calls that tell the user something on the terminal. A box goes the best way there
// is: over the screen, below the text, or, where nobody could close it, to standard error.
#include "console/MessageBox.h"

#include "console/BoxDialog.h"
#include "console/BoxPager.h"
#include "console/ConsoleVisit.h"
#include "platform/Error.h"
#include "platform/objects/DescriptorWait.h"
#include "platform/objects/EndRequest.h"
#include "platform/terminal/CharacterSet.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <new>

#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

constexpr UINT kIcons = 0xF0;

char SignOf(UINT type) {
    switch (type & kIcons) {
    case MB_ICONEXCLAMATION:
        return '!';
    case MB_ICONINFORMATION:
        return 'i';
    default:
        return 0;
    }
}

bool IsTerminal(int descriptor) {
    return isatty(descriptor) != 0;
}

// Waits for a pipe that nobody reads in the way that ends with the program.
void WriteToStandardError(std::string_view text) {
    while (!text.empty() && WaitForDescriptor(STDERR_FILENO, POLLOUT, INFINITE) >= 0) {
        const ssize_t written =
            write(STDERR_FILENO, text.data(), std::min<std::size_t>(text.size(), PIPE_BUF));
        if (written < 0 && errno != EINTR)
            return;
        text.remove_prefix(written > 0 ? static_cast<std::size_t>(written) : 0);
    }
}

bool AreSameFile(int first, int second) {
    struct stat firstStatus {};
    struct stat secondStatus {};
    return fstat(first, &firstStatus) == 0 && fstat(second, &secondStatus) == 0 &&
           firstStatus.st_rdev == secondStatus.st_rdev;
}

// Lines for a terminal that the console draws on go through the console, which else would lose
// track of the cursor.
void Report(CConsoleSession* session, const BoxContent& content) {
    if (session != nullptr && session->IsMine() && IsTerminal(STDOUT_FILENO) &&
        IsTerminal(STDERR_FILENO) && AreSameFile(STDOUT_FILENO, STDERR_FILENO)) {
        session->Output().GoBelow();
        const std::string lines = LinesOf(content, "\r\n");
        session->Output().Write(reinterpret_cast<const std::uint8_t*>(lines.data()), lines.size());
        return;
    }
    // A terminal may be in a mode in which a line feed only feeds.
    WriteToStandardError(LocaleText(LinesOf(content, IsTerminal(STDERR_FILENO) ? "\r\n" : "\n")));
}

void Show(const BoxContent& content) {
    if (IsEndRequested())
        return; // it would be closed at once
    CConsoleSession* const session = TheConsoleSession();
    if (session == nullptr || !IsTerminal(STDIN_FILENO) || !IsTerminal(STDOUT_FILENO))
        return Report(session, content);
    const CConsoleVisit visit(*session);
    if (!visit)
        return Report(session, content);
    CBoxKeys keys(*session);
    if (!CBoxDialog(*session, keys, content).Run())
        CBoxPager(*session, keys).Run(content, !visit.HasTakenOver());
}

} // namespace
} // namespace platform

using namespace platform;

int MessageBoxA(HWND, LPCSTR lpText, LPCSTR lpCaption, UINT uType) {
    try {
        Show({lpCaption != nullptr ? lpCaption : "Error", lpText != nullptr ? lpText : "",
              SignOf(uType)});
    } catch (const std::bad_alloc&) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY); // the box is closed, and the text lost
    }
    return IDOK;
}

BOOL MessageBeep(UINT) {
    constexpr char kBell = '\a';
    CConsoleSession* const session = TheConsoleSession();
    if (session != nullptr && session->IsMine()) {
        session->Output().Ring();
        return TRUE;
    }
    // A terminal that takes nothing now can do without a bell.
    pollfd terminal = {STDOUT_FILENO, POLLOUT, 0};
    if (IsTerminal(STDOUT_FILENO) && poll(&terminal, 1, 0) > 0) {
        const ssize_t written = write(STDOUT_FILENO, &kBell, 1);
        static_cast<void>(written);
    }
    return TRUE;
}
