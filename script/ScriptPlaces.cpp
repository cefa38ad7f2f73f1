#include "script/ScriptPlaces.h"

#include <utility>

namespace {

bool IsCharacter(const ScriptValue& record) {
    return record.size == kSizeCharacter && record.depth == 0;
}

} // namespace

void CScriptPlaces::Assign(const ScriptValue& target, ScriptWord word, DWORD position) {
    const bool copies = !std::exchange(m_bNoCopy, false);
    if (!target.isLocation || IsCharacter(target))
        return StoreValue(target, word, position);
    const DWORD place =
        target.symbol != 0 ? CScriptMemory::SymbolLocation(target.symbol) : target.word.Location();
    // A number in a variable leaves its text where it is.
    if (word.text || target.symbol == 0)
        LeaveText(place);
    if (word.text)
        word = TextFor(place, target.symbol, word, copies);
    if (!HasError())
        StoreValue(target, word, position);
}

void CScriptPlaces::LoadSkipped(ScriptValue& record) {
    record.word = ScriptWord::Integer(1);
    record.isLocation = false;
}

void CScriptPlaces::LoadLocation(ScriptValue& record) {
    const DWORD location = record.word.Location();
    if (IsCharacter(record)) {
        std::int32_t character = 0;
        if (!m_Memory.LoadCharacter(location, character))
            ReportError(ERR_POINTER);
        record.word = ScriptWord::Integer(character);
    } else if (!m_Memory.LoadWord(location, record.word)) {
        ReportError(ERR_POINTER);
    } else if (record.word.text) {
        record.word = m_Memory.ToElementText(location, record.word);
    }
}

void CScriptPlaces::StoreLocation(const ScriptValue& record, ScriptWord word, DWORD position) {
    const DWORD location = record.word.Location();
    if (IsCharacter(record) && !GiveElementRoom(location))
        return;
    const bool isStored = IsCharacter(record)
                              ? m_Memory.StoreCharacter(location, static_cast<BYTE>(word.value))
                              : m_Memory.StoreWord(location, word);
    if (!isStored)
        ReportAt(ERR_POINTER, position);
}
