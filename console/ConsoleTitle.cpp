#include "console/ConsoleTitle.h"

#include "platform/terminal/Characters.h"
#include "platform/terminal/Utf8.h"

#include <memory>

extern "C" { // the header does not say so itself
#include <unibilium.h>
}

namespace platform {
namespace {

// What the types of terminals begin with that have a title whether or not terminfo knows them.
constexpr std::string_view kWithTitle[] = {
    "xterm", "rxvt",    "screen",  "tmux",    "vte",   "gnome", "konsole", "alacritty", "kitty",
    "foot",  "contour", "wezterm", "ghostty", "putty", "st-",   "mlterm",  "mintty",    "Eterm"};

// The extended capability of terminals that take xterm's sequences for the title.
bool TakesXtermTitle(const unibi_term* entry) {
    for (std::size_t index = 0; index < unibi_count_ext_bool(entry); ++index) {
        if (std::string_view(unibi_get_ext_bool_name(entry, index)) == "XT")
            return unibi_get_ext_bool(entry, index) != 0;
    }
    return false;
}

bool IsShown(char32_t character) {
    if (character < 0x80)
        return character >= 0x20 && character != 0x7F;
    const CharacterKind kind = KindOf(character);
    return kind != CharacterKind::Control && kind != CharacterKind::Replaced;
}

} // namespace

bool CConsoleTitle::IsPossible(const char* terminalType) {
    for (const std::string_view type : kWithTitle) {
        if (std::string_view(terminalType).starts_with(type))
            return true;
    }
    const std::unique_ptr<unibi_term, decltype(&unibi_destroy)> entry(unibi_from_term(terminalType),
                                                                      &unibi_destroy);
    if (!entry)
        return false;
    // Other terminals have a status line there, with sequences of its own.
    const char* const begin = unibi_get_str(entry.get(), unibi_to_status_line);
    return (begin != nullptr && std::string_view(begin).starts_with("\x1b]")) ||
           TakesXtermTitle(entry.get());
}

void CConsoleTitle::Set(std::string_view title) {
    if (!m_bChanged)
        m_gather.Put("\x1b[22;0t");
    m_bChanged = true;
    m_gather.Put("\x1b]2;");
    std::size_t room = kMostBytes;
    const auto put = [&](const CUtf8Decoder& character) {
        const std::string_view bytes = character.Bytes();
        if (!IsShown(character.Code()))
            return;
        if (bytes.size() > room) {
            room = 0; // nothing shorter takes its place
            return;
        }
        room -= bytes.size();
        m_gather.PutText(bytes);
    };
    ReadUtf8(title, put, [](std::uint8_t) {});
    m_gather.Put('\a');
}

void CConsoleTitle::Restore() {
    if (m_bChanged)
        m_gather.Put("\x1b[23;0t");
    m_bChanged = false;
}

} // namespace platform
