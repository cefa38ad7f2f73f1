#include "script/ScriptError.h"

#include <array>
#include <string_view>

namespace {

// In the order of the codes, from ERR_OPEN on.
constexpr std::array<std::string_view, ERR_NOT_ARRAY - ERR_OPEN + 1> kMessages = {
    "Error opening script file",
    "Not enough memory",
    "Invalid file",
    "Unexpected end of file",
    "Unrecognized character",
    "Duplicate symbol",
    "Symbol table overflow",
    "Undefined variable or function",
    "Syntax Error",
    "Unmatched",
    "Missing",
    "Out of place",
    "Token buffer overflow",
    "Divide by zero",
    "Pointer error",
    "Undeclared function parameter",
    "Mismatch: IF ... ENDIF",
    "Mismatch: FOR ... NEXT",
    "Mismatch: WHILE ... WEND",
    "Mismatch: SELECT ... ENDSELECT",
    "Mismatch: FUNCTION ... ENDFUNCTION",
    "String variable need to end with $ ..",
    "Dimension out of bound for array",
    "No dimension specified for array",
    "Missing function main()",
    "Unexpected escape sequence",
    "Number of actual and formal parameters mismatched",
    "Maximum elements exceeded for array",
    "Subscript on non-array",
};

} // namespace

std::string ErrorText(DWORD code) {
    if (code >= ERR_OPEN && code <= ERR_NOT_ARRAY)
        return std::string(kMessages[code - ERR_OPEN]);
    return "Unknown Error " + std::to_string(static_cast<std::int32_t>(code));
}
