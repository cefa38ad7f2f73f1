#include "script/TextBuiltins.h"

#include "script/BuiltinSupport.h"
#include "script/ScriptFormat.h"
#include "script/TextParts.h"

#include <algorithm>

namespace builtins {

ScriptWord Max(CVScript&, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(std::max(arguments[0].value, arguments[1].value));
}

ScriptWord Min(CVScript&, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(std::min(arguments[0].value, arguments[1].value));
}

ScriptWord Sprintf(CVScript& script, const BuiltinArguments& arguments) {
    const std::string_view format = script.ReadText(arguments[1]);
    std::vector<FormatValue> values;
    for (DWORD index = 2; index < arguments.count; ++index) {
        const ScriptWord& word = arguments[index];
        values.push_back({word.text, word.value, word.text ? script.ReadText(word) : ""});
    }
    if (script.HasError())
        return {};
    std::string text;
    const DWORD error = FormatScript(format, values, text);
    if (error == 0)
        script.WriteText(arguments[0], text);
    else
        script.ReportError(error);
    return {};
}

ScriptWord String(CVScript& script, const BuiltinArguments& arguments) {
    return KeepResult(script, EResultBuffer::Number, std::to_string(arguments[0].value));
}

ScriptWord StringCat(CVScript& script, const BuiltinArguments& arguments) {
    std::string text;
    if (!TakeText(script, arguments[0], text))
        return {};
    text += script.ReadText(arguments[1]);
    if (!script.HasError())
        script.WriteText(arguments[0], text);
    return arguments[0];
}

ScriptWord StringCompare(CVScript& script, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(
        CompareTexts(script.ReadText(arguments[0]), script.ReadText(arguments[1])));
}

ScriptWord StringCompareI(CVScript& script, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(
        CompareTextsIgnoringCase(script.ReadText(arguments[0]), script.ReadText(arguments[1])));
}

ScriptWord StringFind(CVScript& script, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(
        FindText(script.ReadText(arguments[0]), script.ReadText(arguments[1])));
}

ScriptWord StringLeft(CVScript& script, const BuiltinArguments& arguments) {
    const std::string_view left = LeftOf(script.ReadText(arguments[0]), arguments[1].value);
    return KeepResult(script, EResultBuffer::Left, left);
}

ScriptWord StringLength(CVScript& script, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(static_cast<std::int32_t>(script.ReadText(arguments[0]).size()));
}

ScriptWord StringMid(CVScript& script, const BuiltinArguments& arguments) {
    const std::string_view middle =
        MiddleOf(script.ReadText(arguments[0]), arguments[1].value, arguments[2].value);
    return KeepResult(script, EResultBuffer::Middle, middle);
}

// The whole text is copied, as for whoever still refers to an earlier result in it.
ScriptWord StringRight(CVScript& script, const BuiltinArguments& arguments) {
    const std::string_view text = RightOf(script.ReadText(arguments[0]), kMaxResultLength);
    const std::string_view right = RightOf(text, arguments[1].value);
    return KeepResult(script, EResultBuffer::Right, text, text.size() - right.size());
}

ScriptWord StringToNumber(CVScript& script, const BuiltinArguments& arguments) {
    return ScriptWord::Integer(NumberOf(script.ReadText(arguments[0])));
}

} // namespace builtins
