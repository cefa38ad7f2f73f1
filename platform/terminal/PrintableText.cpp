#include "platform/terminal/PrintableText.h"

#include "platform/terminal/Characters.h"
#include "platform/terminal/Utf8.h"

namespace platform {
namespace {

void Append(std::string& text, const CUtf8Decoder& character) {
    const std::string_view bytes = character.Bytes();
    const char32_t code = character.Code();
    const CharacterKind ascii =
        code < 0x20 || code == 0x7F ? CharacterKind::Control : CharacterKind::Narrow;
    switch (code < 0x80 ? ascii : KindOf(code)) {
    case CharacterKind::Control:
    case CharacterKind::Replaced:
        text.append(bytes.size(), '?');
        break;
    case CharacterKind::Omitted:
        break;
    default:
        text += bytes;
    }
}

} // namespace

std::string PrintableText(std::string_view text) {
    std::string result;
    ReadUtf8(
        text, [&](const CUtf8Decoder& character) { Append(result, character); },
        [&](std::uint8_t) { result += '?'; });
    return result;
}

} // namespace platform
