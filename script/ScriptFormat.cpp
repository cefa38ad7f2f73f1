#include "script/ScriptFormat.h"

#include "common/Ascii.h"
#include "script/ScriptArea.h"
#include "script/ScriptError.h"

#include <algorithm>

namespace {

constexpr std::size_t kMaxLength = CScriptArea::kTextLength;

struct Conversion {
    bool isLeftJustified = false;
    char padding = ' ';
    std::size_t width = 0;
    char kind = 0; // 0: the format ended before it
};

class CFormatRun {
  public:
    CFormatRun(std::string_view format, std::span<const FormatValue> values, std::string& text)
        : m_format(format), m_values(values), m_text(text) {}

    DWORD Run();

  private:
    Conversion ReadConversion();
    DWORD Convert(const Conversion& conversion);
    void AppendPadded(const Conversion& conversion, std::string_view value);
    void Append(std::string_view piece) { m_text += piece.substr(0, kMaxLength - m_text.size()); }
    void Append(std::size_t count, char character) {
        m_text.append(std::min(count, kMaxLength - m_text.size()), character);
    }

    std::string_view m_format; // what is still to be read
    std::span<const FormatValue> m_values;
    std::string& m_text;
};

DWORD CFormatRun::Run() {
    m_text.clear();
    for (;;) {
        const std::size_t plain = std::min(m_format.find('%'), m_format.size());
        Append(m_format.substr(0, plain));
        if (plain == m_format.size())
            return 0;
        m_format.remove_prefix(plain + 1);
        const Conversion conversion = ReadConversion();
        if (conversion.kind == 0)
            return 0;
        if (const DWORD error = Convert(conversion); error != 0)
            return error;
    }
}

Conversion CFormatRun::ReadConversion() {
    Conversion conversion;
    if (m_format.starts_with('-')) {
        conversion.isLeftJustified = true;
        m_format.remove_prefix(1);
    }
    if (m_format.starts_with('0'))
        conversion.padding = '0';
    while (!m_format.empty() && IsDigit(m_format.front())) {
        const auto digit = static_cast<std::size_t>(m_format.front() - '0');
        conversion.width = std::min(conversion.width * 10 + digit, kMaxLength);
        m_format.remove_prefix(1);
    }
    if (!m_format.empty()) {
        conversion.kind = m_format.front();
        m_format.remove_prefix(1);
    }
    return conversion;
}

DWORD CFormatRun::Convert(const Conversion& conversion) {
    if (conversion.kind != 'c' && conversion.kind != 'i' && conversion.kind != 's') {
        Append(1, conversion.kind);
        return 0;
    }
    if (m_values.empty())
        return ERR_ARG_COUNT;
    const FormatValue& value = m_values.front();
    m_values = m_values.subspan(1);
    if (value.isText != (conversion.kind == 's'))
        return ERR_SYNTAX;

    if (conversion.kind == 's')
        AppendPadded(conversion, value.text);
    else if (conversion.kind == 'i')
        AppendPadded(conversion, std::to_string(value.number));
    else
        AppendPadded(conversion, std::string(1, static_cast<char>(value.number & 0xFF)));
    return 0;
}

void CFormatRun::AppendPadded(const Conversion& conversion, std::string_view value) {
    const std::size_t padding = conversion.width - std::min(conversion.width, value.size());
    if (!conversion.isLeftJustified)
        Append(padding, conversion.padding);
    Append(value);
    if (conversion.isLeftJustified)
        Append(padding, conversion.padding);
}

} // namespace

DWORD FormatScript(std::string_view format, std::span<const FormatValue> values,
                   std::string& text) {
    return CFormatRun(format, values, text).Run();
}
