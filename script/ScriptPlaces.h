// CScriptPlaces: where values are kept: what is loaded from a place, stored into it, assigned to
// it.
//
// A room of the engine (ScriptState.h), on that of the scopes. A ScriptValue that is a location is
// a variable, an element, a character of a text, or whatever else a reference leads to; a location
// that leads nowhere is reported as a "Pointer error", what is no location where one is needed as a
// "Syntax Error".
#pragma once

#include "script/ScriptScopes.h"

class CScriptPlaces : public CScriptScopes {
  protected:
    using CScriptScopes::CScriptScopes;
    ~CScriptPlaces() = default;

    // Makes a location its value. What is skipped has a value without being looked at.
    void LoadValue(ScriptValue& record) {
        if (m_nSkip > 0)
            return LoadSkipped(record);
        if (!record.isLocation)
            return;
        record.isLocation = false;
        if (record.symbol != 0)
            record.word = m_Symbols[record.symbol].word;
        else
            LoadLocation(record);
    }

    // Stores a word as it is; what is wrong is reported by a position in the stream.
    void StoreValue(const ScriptValue& record, ScriptWord word, DWORD position) {
        if (!record.isLocation || record.size == kSizeFunction)
            return ReportAt(ERR_SYNTAX, position);
        if (record.symbol != 0)
            m_Symbols[record.symbol].word = word;
        else
            StoreLocation(record, word, position);
    }

    // Stores a word as "=" does: text is copied, so that no two variables share one. After a
    // dereference the reference itself is stored, unless it would be dead before the variable is.
    void Assign(const ScriptValue& target, ScriptWord word, DWORD position);

    bool m_bNoCopy = false; // a dereference was seen: the next text assigned is not copied

  private:
    static void LoadSkipped(ScriptValue& record);
    // Out of line: most places are variables.
    [[gnu::noinline]] void LoadLocation(ScriptValue& record);
    [[gnu::noinline]] void StoreLocation(const ScriptValue& record, ScriptWord word,
                                         DWORD position);
};
