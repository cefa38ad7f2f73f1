// CScriptScopes: the scopes of a run, the storage that they take and give back, and the lives of
// the texts in it.
//
// A room of the engine (ScriptState.h). The whole rule for texts stands here:
//
// 1. Storage is taken from the top of the heap. The end of a block, a call or a condition gives
//    back all that was taken since its begin, the end of an expression what its statement made on
//    the way. So whoever refers to a text and lives longer must have it moved, or have a copy.
//
// 2. A place (a variable, or an element of a STRING array) that is assigned a text gets a copy of
//    it, in a buffer of its own: its home. A STRING variable has its home from its declaration;
//    others (elements, parameters, INTEGER variables) get one in the scope that runs when they are
//    given their first text. What is assigned later is copied into the same home, so that a loop
//    does not use up the heap.
//
// 3. When a scope ends, the homes that were made in it for places that stay are moved down to where
//    the scope began, and belong to the scope around it from then on; so does the text of a
//    result. m_Kept lists the places for which that is to be done.
//
// 4. Who refers to a text without a copy is a borrower: a parameter, and a variable that was
//    assigned behind a dereference, which stores the reference itself. It gets a copy all the same
//    where the text would be given back while the variable stays. Arguments, left operands and
//    selectors in progress (m_Arguments) borrow as well.
//
// 5. Before another text is assigned to a place, those who borrow what it holds get a copy, whose
//    keepers they are by rule 3.
//
// 6. Where a text was stored that no list knows of (in an INTEGER array, through a reference), the
//    statement gives back nothing: what it made lasts until the scope ends.
#pragma once

#include "script/ScriptState.h"

#include <utility>

class CScriptScopes : public CScriptState {
  protected:
    using CScriptState::CScriptState;
    ~CScriptScopes() = default;

    // What a block, a call or a condition gives back at its end.
    struct Scope {
        DWORD symbols;
        DWORD heap;
        std::size_t kept;
    };
    Scope BeginScope() {
        const Scope scope = {m_Symbols.Top(), m_Area.Heap(), m_Kept.size()};
        m_Scopes.push_back(scope);
        return scope;
    }
    // Gives back what was taken since; the result register's text stays on demand.
    void EndScope(const Scope& scope, bool keepsResult) {
        m_Scopes.pop_back();
        GiveBack(scope, keepsResult);
        m_Symbols.DropTo(scope.symbols);
    }
    // The same for a call, with the parameters that it has bound: the borrowers since it began.
    std::size_t CountBorrowers() const { return m_Borrowers.size(); }
    void EndCall(const Scope& scope, std::size_t firstBorrower) {
        if (m_Borrowers.size() > firstBorrower)
            DropBorrowers(firstBorrower, scope.symbols);
        EndScope(scope, true);
    }

    // What the statement of an expression gives back at its end: the texts that it made on its way.
    struct Statement {
        DWORD heap;
        std::size_t kept;
        bool wasStored;
    };
    Statement BeginStatement() {
        return {m_Area.Heap(), m_Kept.size(), std::exchange(m_bTextStored, false)};
    }
    void EndStatement(const Statement& statement) {
        // What is kept is in the heap, too.
        if (!m_bTextStored && m_Area.Heap() != statement.heap)
            GiveBack({m_Symbols.Top(), statement.heap, statement.kept}, false);
        m_bTextStored = m_bTextStored || statement.wasStored;
    }

    // Storage from the heap, zero or, for a text buffer, as it is; 0 after a report.
    DWORD Alloc(DWORD count);
    DWORD AllocTextBuffer();

    // Copies a text into the home of a place, which it makes if there is none; the copy, or no text
    // after a report.
    ScriptWord CopyTextTo(DWORD place, ScriptWord text);

    // What a place is to store when it is assigned a text: a copy or, on demand, the reference
    // itself, if it lives as long. The symbol is the variable that the place is, 0 for others.
    ScriptWord TextFor(DWORD place, DWORD symbol, ScriptWord text, bool copies);

    // Another text is about to be assigned to a place: who borrows what it holds gets a copy.
    void LeaveText(DWORD place) {
        if (!m_Borrowers.empty() || !m_Arguments.empty())
            LeaveToBorrowers(place);
    }

    // A parameter refers to a text of the caller's.
    void AddBorrower(DWORD symbol) { m_Borrowers.push_back(symbol); }

    // The text of an element that is a literal so far is about to be written to. False after a
    // report.
    bool GiveElementRoom(DWORD location);

  private:
    // A text that outlives the scope it was made in, and who refers to it: a place, an argument
    // (ArgumentPlace) or kResultPlace.
    struct KeptText {
        DWORD source;
        DWORD place;
        bool isOwned;
    };
    // No places, but what refers to a text like one: the result register, and the arguments above
    // every location.
    static constexpr DWORD kResultPlace = 0;
    static constexpr DWORD kArgumentBase = 0x80000000;
    static constexpr DWORD ArgumentPlace(std::size_t index) {
        return kArgumentBase + static_cast<DWORD>(index);
    }

    void GiveBack(const Scope& scope, bool keepsResult) {
        if (m_Kept.size() > scope.kept || (keepsResult && m_nResult.text))
            KeepTexts(scope, keepsResult);
        else
            m_Area.SetHeap(scope.heap);
    }
    // Out of line, here and below: most scopes end without a text to keep.
    [[gnu::noinline]] void KeepTexts(const Scope& scope, bool keepsResult);
    void GatherKept(const Scope& scope);
    void GatherResult(const Scope& scope);
    bool IsGivenBack(const ScriptWord& word, const Scope& scope) const;
    bool IsGone(DWORD place, const Scope& scope) const;
    ScriptWord LoadKept(DWORD place) const;
    void StoreKept(DWORD place, ScriptWord word, DWORD home);

    DWORD HomeFor(DWORD place);
    ScriptWord CopyText(DWORD home, ScriptWord text);
    [[gnu::noinline]] ScriptWord Borrow(DWORD symbol, ScriptWord text);
    bool DiesBefore(DWORD place, ScriptWord text) const;
    [[gnu::noinline]] void LeaveToBorrowers(DWORD place);
    [[gnu::noinline]] void DropBorrowers(std::size_t first, DWORD lastSymbol);

    std::vector<Scope> m_Scopes;    // in progress, the innermost last
    std::vector<DWORD> m_Kept;      // places whose text a scope must keep when it ends
    std::vector<DWORD> m_Borrowers; // variables that refer to a text that is not their own
    std::vector<KeptText> m_Moving; // while a scope ends
    bool m_bTextStored = false;     // what is no place refers to text that the statement made
};
