// CEscapeParameters: takes the parameters of a control sequence apart, one by one.
//
// Pure; looks at the given text, which must outlive it and which a NUL ends early. Parameters are
// separated by semicolons, and an empty one does not count: "5;10" and ";5;;10;" hold the same two.
// A value has at most two characters.
#pragma once

#include "terminal/Decimal.h"

#include <optional>
#include <string_view>

class CEscapeParameters {
  public:
    explicit CEscapeParameters(std::string_view text)
        : m_pNext(text.data()), m_pEnd(text.data() + text.size()) {}

    // The value of the next parameter; nothing when there is none, or when it is too long to be
    // used. In one pass and in the header: coloured output has a parameter for every few
    // characters.
    std::optional<int> Next() {
        while (!IsAtEnd() && *m_pNext == kSeparator)
            ++m_pNext;
        const char* const parameter = m_pNext;
        unsigned value = 0;
        bool isNumber = true;
        for (; !IsAtEnd() && *m_pNext != kSeparator; ++m_pNext) {
            const unsigned digit = static_cast<unsigned char>(*m_pNext) - unsigned{'0'};
            isNumber = isNumber && digit <= 9;
            value = value * 10 + digit;
        }
        const auto length = static_cast<std::size_t>(m_pNext - parameter);
        if (length == 0 || length > kLongestValue)
            return std::nullopt;
        return isNumber ? static_cast<int>(value) : ParseDecimal({parameter, length});
    }

    // The value of one parameter's text: decimal, 0 when there are no digits. Nothing for an empty
    // text or one of three and more characters.
    static std::optional<int> Value(std::string_view text);

  private:
    static constexpr char kSeparator = ';';
    static constexpr std::size_t kLongestValue = 2;

    bool IsAtEnd() const { return m_pNext == m_pEnd || *m_pNext == '\0'; }

    const char* m_pNext;
    const char* m_pEnd;
};
