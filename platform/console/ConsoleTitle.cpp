#include "platform/console/ConsoleTitle.h"

#include "platform/console/ConsoleCharacters.h"
#include "platform/console/ConsoleUtf8.h"

namespace platform {
namespace {

// Types of terminals that have no title, or would show the sequence.
constexpr std::string_view WITHOUT_TITLE[] = {"linux", "vt", "dumb", "cons"};

bool IsShown(char32_t character) {
    if (character < 0x80)
        return character >= 0x20 && character != 0x7F;
    const CharacterKind kind = KindOf(character);
    return kind != CharacterKind::CONTROL && kind != CharacterKind::REPLACED;
}

} // namespace

bool CConsoleTitle::IsPossible(std::string_view terminalType) {
    for (const std::string_view type : WITHOUT_TITLE) {
        if (terminalType.starts_with(type))
            return false;
    }
    return true;
}

void CConsoleTitle::Set(std::string_view title) {
    if (!m_bChanged)
        m_gather.Put("\x1b[22;0t");
    m_bChanged = true;
    m_gather.Put("\x1b]2;");
    std::size_t room = MOST_BYTES;
    const auto put = [&](const CUtf8Decoder& character) {
        const std::string_view bytes = character.Bytes();
        if (!IsShown(character.Code()))
            return;
        if (bytes.size() > room) {
            room = 0; // nothing shorter takes its place
            return;
        }
        room -= bytes.size();
        m_gather.Put(bytes);
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
