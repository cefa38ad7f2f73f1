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
    CUtf8Decoder decoder;
    std::size_t length = 0;
    for (std::size_t index = 0; index < title.size(); ++index) {
        auto result = decoder.Feed(static_cast<std::uint8_t>(title[index]));
        if (result == CUtf8Decoder::Result::BROKEN)
            result = decoder.Feed(static_cast<std::uint8_t>(title[index]));
        if (result != CUtf8Decoder::Result::CHARACTER || !IsShown(decoder.Code()))
            continue;
        if (length + decoder.Bytes().size() > MOST_BYTES)
            break;
        length += decoder.Bytes().size();
        m_gather.Put(decoder.Bytes());
    }
    m_gather.Put('\a');
}

void CConsoleTitle::Restore() {
    if (m_bChanged)
        m_gather.Put("\x1b[23;0t");
    m_bChanged = false;
}

} // namespace platform
