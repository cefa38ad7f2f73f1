#include "console/ConsoleAlternate.h"

#include "console/ConsoleOutput.h"

#include <cstdlib>
#include <memory>
#include <string_view>

extern "C" { // the header does not say so itself
#include <unibilium.h>
}

namespace platform {

// The three modes that terminals have for it, the best first. The older ones leave the cursor where
// it is, so it is saved beside them; the oldest one keeps what it last showed.
struct CConsoleAlternate::Way {
    std::string_view mode; // in the terminfo entry's enter_ca_mode
    const char* enter;
    const char* leave;
};

const CConsoleAlternate::Way CConsoleAlternate::kWays[] = {
    {"?1049h", "\033[?1049h", "\033[0m\033[?1049l"},
    {"?1047h", "\0337\033[?1047h", "\033[0m\033[?1047l\0338"},
    {"?47h", "\0337\033[?47h", "\033[0m\033[H\033[J\033[?47l\0338"},
};

namespace {

// GNU screen has its alternate screen off unless its user asked for it, and says that it has one.
// tmux goes by the same type and always has one.
bool IsDoubtful(std::string_view terminalType) {
    return terminalType.starts_with("screen") && std::getenv("TMUX") == nullptr;
}

} // namespace

const CConsoleAlternate::Way* CConsoleAlternate::WayOf(std::string_view terminalType) {
    if (terminalType.empty() || IsDoubtful(terminalType))
        return nullptr;
    const std::unique_ptr<unibi_term, decltype(&unibi_destroy)> entry(
        unibi_from_term(terminalType.data()), &unibi_destroy);
    const char* const enter = entry ? unibi_get_str(entry.get(), unibi_enter_ca_mode) : nullptr;
    if (enter == nullptr)
        return nullptr;
    for (const Way& way : kWays) {
        if (std::string_view(enter).find(way.mode) != std::string_view::npos)
            return &way;
    }
    return nullptr;
}

const CConsoleAlternate::Way* CConsoleAlternate::FindWay() {
    if (!m_bLookedUp && m_terminalType != nullptr)
        m_way = WayOf(m_terminalType);
    m_bLookedUp = true;
    return m_way;
}

const char* CConsoleAlternate::LeavingSequence() {
    const Way* const way = FindWay();
    return way != nullptr ? way->leave : nullptr;
}

bool CConsoleAlternate::Enter() {
    const Way* const way = FindWay();
    if (way == nullptr || !m_gather.EnsureRoom())
        return false;
    m_gather.Put(way->enter);
    m_gather.Put("\x1b[0m\x1b[?25h"); // whatever the first screen has: default colours, a cursor
    m_bEntered = true;
    return true;
}

bool CConsoleAlternate::Clear() {
    if (!EnsureRoom())
        return false;
    m_gather.Put("\x1b[0m\x1b[H\x1b[J");
    return true;
}

bool CConsoleAlternate::Draw(int row, int column, std::string_view text, bool reversed) {
    if (!PlaceCursor(row, column))
        return false;
    if (reversed)
        m_gather.Put("\x1b[7m");
    m_gather.PutText(text);
    m_gather.Put(reversed ? "\x1b[0m" : "\x1b[K");
    return true;
}

bool CConsoleAlternate::PlaceCursor(int row, int column) {
    if (!EnsureRoom())
        return false;
    m_gather.PutSequence(row + 1, column + 1, 'H');
    return true;
}

void CConsoleAlternate::Leave() {
    if (!m_bEntered)
        return;
    m_bEntered = false;
    if (!m_gather.HasRoom() && !m_gather.Drain(CConsoleOutput::MostMillisecondsWithoutProgress())) {
        m_gather.Abandon();
        if (m_gather.IsGone())
            return;
        m_gather.Put("\x18"); // CAN: ends a sequence that was cut off
    }
    m_gather.Put(m_way->leave);
    m_cursor.NoteReturn();
    m_colours.NoteReset();
}

} // namespace platform
