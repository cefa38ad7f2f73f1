#include "script/KeywordTable.h"

#include "script/TokenCodes.h"

#include <algorithm>
#include <array>

namespace {

struct KeywordRow {
    std::string_view name;
    WORD code;
};

constexpr std::array<KeywordRow, 28> kKeywords = {{
    {"\r", TOKEN_EOL},
    {"STRING", TOKEN_STRING},
    {"FUNCTION", TOKEN_FUNCTION},
    {"ELSEIF", TOKEN_ELSEIF},
    {"ELSE", TOKEN_ELSE},
    {"FOR", TOKEN_FOR},
    {"TO", TOKEN_TO},
    {"STEP", TOKEN_STEP},
    {"NEXT", TOKEN_NEXT},
    {"IF", TOKEN_IF},
    {"THEN", TOKEN_THEN},
    {"SELECT", TOKEN_SELECT},
    {"CASE", TOKEN_CASE},
    {"DEFAULT", TOKEN_DEFAULT},
    {"ENDIF", TOKEN_ENDIF},
    {"ENDSELECT", TOKEN_ENDSELECT},
    {"ENDFUNCTION", TOKEN_ENDFUNCTION},
    {"INTEGER", TOKEN_INTEGER},
    {"RETURN", TOKEN_RETURN},
    {"EXITFOR", TOKEN_EXITFOR},
    {"EXITWHILE", TOKEN_EXITWHILE},
    {"WHILE", TOKEN_WHILE},
    {"WEND", TOKEN_WEND},
    {"AND", TOKEN_AND},
    {"OR", TOKEN_OR},
    {"NOT", TOKEN_NOT},
    {"MOD", TOKEN_MOD},
    {"GOTO", TOKEN_GOTO},
}};

constexpr std::string_view kDelimiters = ",{}()=&@<>[]:#*/%+-\xFF";

} // namespace

BYTE FindKeyword(std::string_view word) {
    const auto* row = std::ranges::find(kKeywords, word, &KeywordRow::name);
    return row == kKeywords.end() ? BYTE{0} : static_cast<BYTE>(row->code);
}

bool IsDelimiter(BYTE character) {
    return kDelimiters.find(static_cast<char>(character)) != std::string_view::npos;
}

std::string TokenName(BYTE code) {
    const auto* row = std::ranges::find(kKeywords, WORD{code}, &KeywordRow::code);
    if (row != kKeywords.end())
        return std::string(row->name);
    return {static_cast<char>(code)};
}
