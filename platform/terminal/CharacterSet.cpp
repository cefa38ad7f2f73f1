// The set's name comes from the locale, or from the locale's own name where the system lacks it;
// iconv translates character by character, because each that is lacking becomes one '?'.
#include "platform/terminal/CharacterSet.h"

#include "platform/terminal/Utf8.h"

#include <algorithm>
#include <cctype>
#include <clocale>
#include <cstdlib>
#include <locale.h>

#include <langinfo.h>

namespace platform {
namespace {

const iconv_t kNoConverter = reinterpret_cast<iconv_t>(-1);

// The names have several spellings.
bool IsNameOfUtf8(std::string name) {
    std::erase_if(name, [](unsigned char letter) { return std::isalnum(letter) == 0; });
    std::transform(name.begin(), name.end(), name.begin(),
                   [](unsigned char letter) { return std::toupper(letter); });
    return name == "UTF8";
}

// What a locale's name says when the system does not have that locale.
std::string SetOfName(std::string_view locale) {
    const std::size_t dot = locale.find('.');
    if (dot == std::string_view::npos)
        return "";
    const std::string_view set = locale.substr(dot + 1);
    return std::string(set.substr(0, set.find('@')));
}

std::string SetOfEnvironment() {
    const locale_t locale = newlocale(LC_CTYPE_MASK, "", nullptr);
    if (locale != nullptr) {
        std::string set = nl_langinfo_l(CODESET, locale);
        freelocale(locale);
        return set;
    }
    for (const char* const name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
        const char* const value = std::getenv(name);
        if (value != nullptr && *value != 0)
            return SetOfName(value);
    }
    return "";
}

bool IsSafe(char character) {
    const auto byte = static_cast<unsigned char>(character);
    return (byte >= 0x20 && byte < 0x7F) || byte >= 0xA0;
}

} // namespace

CCharacterSet::CCharacterSet(const std::string& name) : m_converter(kNoConverter) {
    if (IsNameOfUtf8(name)) {
        m_kind = Kind::Utf8;
        return;
    }
    m_converter = name.empty() ? kNoConverter : iconv_open(name.c_str(), "UTF-8");
    // ASCII as well, which has many names, lacks this.
    if (m_converter != kNoConverter && name != "ANSI_X3.4-1968")
        m_kind = Kind::Other;
}

CCharacterSet::~CCharacterSet() {
    if (m_converter != kNoConverter)
        iconv_close(m_converter);
}

const CCharacterSet& CCharacterSet::OfLocale() {
    static const CCharacterSet set(SetOfEnvironment());
    return set;
}

const CCharacterSet& CCharacterSet::Utf8() {
    static const CCharacterSet set("UTF-8");
    return set;
}

bool CCharacterSet::Has(std::string_view character) const {
    return m_kind == Kind::Utf8 || !EncodeCharacter(character).empty();
}

// Empty for what the set lacks.
std::string CCharacterSet::EncodeCharacter(std::string_view character) const {
    if (m_kind != Kind::Other)
        return "";
    const std::lock_guard lock(m_lock);
    iconv(m_converter, nullptr, nullptr, nullptr, nullptr);
    char bytes[16];
    char* in = const_cast<char*>(character.data());
    char* out = bytes;
    std::size_t inLeft = character.size();
    std::size_t outLeft = sizeof bytes;
    // Some sets hold a character back until the next one is there.
    if (iconv(m_converter, &in, &inLeft, &out, &outLeft) != 0 ||
        iconv(m_converter, nullptr, nullptr, &out, &outLeft) != 0)
        return "";
    const std::size_t length = sizeof bytes - outLeft;
    // Buffers are measured for UTF-8.
    if (length > character.size() || !std::all_of(bytes, bytes + length, IsSafe))
        return "";
    return {bytes, length};
}

std::string CCharacterSet::Encode(std::string_view text) const {
    if (m_kind == Kind::Utf8)
        return std::string(text);
    std::string result;
    ReadUtf8(
        text,
        [&](const CUtf8Decoder& character) {
            const std::string_view bytes = character.Bytes();
            const std::string encoded = bytes.size() > 1 ? EncodeCharacter(bytes) : "";
            result += bytes.size() == 1 ? bytes : encoded.empty() ? "?" : encoded;
        },
        [&](std::uint8_t) { result += '?'; });
    return result;
}

} // namespace platform
