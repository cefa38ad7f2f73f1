// CAnsiConsole: acts on the control sequences in what the device sends, and sends the sequences of
// the special keys to the device.
//
// Owned by the session, used from its thread. Bytes go in in pieces of any size; a sequence acts
// when its final byte arrives. Nothing is allocated, and no sequence of whatever length or content
// does more than be dropped.
#pragma once

#include "terminal/ConsoleScreen.h"
#include "terminal/EscapeParser.h"

#include <span>
#include <string_view>

class CAnsiConsole : public CConsoleScreen {
  public:
    // Sends the key's sequence to the device. Always FALSE: there is no character for the caller.
    BOOL OnKey(DWORD key, BYTE* character) override;

    // Shows bytes, or collects them where they belong to a control sequence: one, or any number of
    // them, of which text between sequences goes to the console in one piece.
    void PutChar(BYTE character) override { PutText({&character, 1}); }
    void PutText(std::span<const BYTE> bytes);

    // Acts on the sequence collected. FALSE for a final character that has no meaning.
    virtual BOOL ProcessEscape(BYTE finalCharacter);

  protected:
    ~CAnsiConsole() = default;

    // What a special key sends, by its virtual key code; empty for a key that sends nothing.
    static std::string_view GetKeySequence(WORD key);

  private:
    using Action = void (*)(CAnsiConsole& screen);
    struct Command {
        char finalCharacter;
        Action action;
    };

    static constexpr BYTE kFirstFinal = '@';
    static constexpr BYTE kLastFinal = 'u';

    static const Command kCommands[];
    static const std::array<Action, kLastFinal - kFirstFinal + 1> kActions;

    char FirstParameterCharacter() const { return m_szEscape[1]; }
    int Count() const;
    // The values of the first two parameters, where they can be used.
    void ReadTwo(int& first, int& second) const;

    void MoveToNextLines(int count);
    void MoveTo();
    void EraseInScreen();
    void EraseInLine();
    void EraseWholeLine();
    void SelectGraphicRendition();
    void ReportStatus();
    void ReportCursor();
    void SelectScrollRegion();
    void SaveCursor();
    void RestoreCursor();

    CEscapeParser::Sequence m_szEscape{};
    DWORD m_nEscapeLength = 0;
    int m_nSavedRow = 0;
    int m_nSavedColumn = 0;
    CEscapeParser m_parser{m_bInEscape, m_szEscape, m_nEscapeLength};
};
