#include "script/BuiltinSupport.h"

#include <algorithm>
#include <cstring>

namespace builtins {

bool TakeText(CVScript& script, const ScriptWord& argument, std::string& text) {
    text = script.ReadText(argument);
    return !script.HasError();
}

DWORD MillisecondsOf(const ScriptWord& argument) {
    return static_cast<DWORD>(std::max(argument.value, 0));
}

ScriptWord KeepResult(CVScript& script, EResultBuffer buffer, std::string_view text,
                      std::size_t position) {
    const std::string_view kept = text.substr(0, kMaxResultLength);
    CResultBuffers::Buffer& storage = script.Results()[buffer];
    if (!kept.empty())
        std::memmove(storage.data(), kept.data(), kept.size());
    storage[kept.size()] = '\0';
    return ScriptWord::Text(CScriptMemory::ResultLocation(buffer) + static_cast<DWORD>(position));
}

} // namespace builtins
