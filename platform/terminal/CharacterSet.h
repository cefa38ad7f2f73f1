// A character set that text goes out in: that of the user's locale. Inside of the program text is
// UTF-8. What a set lacks is '?', and so is what it has only with a byte that an 8-bit terminal
// takes for a control function (0x80 to 0x9F).
//
// Any thread may use one.
#pragma once

#include <iconv.h>
#include <mutex>
#include <string>
#include <string_view>

namespace platform {

class CCharacterSet {
  public:
    // By the name that the system knows it by; ASCII when it knows none.
    explicit CCharacterSet(const std::string& name);
    CCharacterSet(const CCharacterSet&) = delete;
    CCharacterSet& operator=(const CCharacterSet&) = delete;
    ~CCharacterSet();

    // The one of the environment's LC_ALL, LC_CTYPE or LANG, as it was at the first call.
    static const CCharacterSet& OfLocale();
    static const CCharacterSet& Utf8();

    bool IsUtf8() const { return m_kind == Kind::Utf8; }
    bool IsAscii() const { return m_kind == Kind::Ascii; }
    // Whether the set has a character, given as UTF-8.
    bool Has(std::string_view character) const;
    // The text in this set; ASCII characters stay what they are. Never longer than it was.
    std::string Encode(std::string_view text) const;

  private:
    enum class Kind { Utf8, Ascii, Other };

    std::string EncodeCharacter(std::string_view character) const;

    Kind m_kind = Kind::Ascii;
    iconv_t m_converter;
    mutable std::mutex m_lock; // of the converter
};

// A text as it can be printed: in the set of the locale.
inline std::string LocaleText(std::string_view text) {
    return CCharacterSet::OfLocale().Encode(text);
}

} // namespace platform
