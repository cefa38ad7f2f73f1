// CAnsiConsole: interprets ANSI control sequences in what the device sends, and sends the sequences
// of the special keys to the device.
//
// Owned by the session, used from its thread. Bytes go in one by one; a sequence acts when its
// final byte arrives. Nothing is allocated, and no sequence of whatever length or content does more
// than be dropped.
#pragma once

#include "terminal/ConsoleScreen.h"

#include <array>
#include <cstddef>
#include <string_view>

class CAnsiConsole : public CConsoleScreen {
  public:
    // Sends the key's sequence to the device. Always FALSE: there is no character for the caller.
    BOOL OnKey(DWORD key, BYTE* character) override;

    // Shows a byte, or collects it when it belongs to a control sequence.
    void PutChar(BYTE character) override {
        if (m_bInEscape && IsParameter(character) && m_nEscapeLength - 1 < kLongestSequence - 1)
            m_szEscape[m_nEscapeLength++] = static_cast<char>(character);
        else if (m_bInEscape || character == kEscape)
            Collect(character);
        else
            CConsoleScreen::PutChar(character);
    }

    // Acts on the sequence collected. FALSE for a final character that has no meaning.
    virtual BOOL ProcessEscape(BYTE finalCharacter);

  protected:
    ~CAnsiConsole() = default;

    static constexpr BYTE kEscape = 0x1B;

    // What a special key sends, by its virtual key code; empty for a key that sends nothing.
    static std::string_view GetKeySequence(WORD key);

  private:
    using Action = void (CAnsiConsole::*)();
    struct Command {
        char finalCharacter;
        Action action;
    };

    static constexpr BYTE kFirstFinal = '@';
    static constexpr BYTE kLastFinal = 'u';

    static constexpr std::size_t kLongestSequence = 255;

    // The digits and separators that most sequences consist of.
    static constexpr bool IsParameter(BYTE character) {
        return character >= '0' && character <= ';';
    }

    static const Command kCommands[];
    static const std::array<Action, kLastFinal - kFirstFinal + 1> kActions;

    void Collect(BYTE character);
    void BeginSequence();
    void ShowAsText(BYTE character);

    std::string_view ParameterText() const;
    char FirstParameterCharacter() const { return m_szEscape[1]; }
    int Count() const;
    // The values of the first two parameters, where they can be used.
    void ReadTwo(int& first, int& second) const;

    void MoveUp();
    void MoveDown();
    void MoveForward();
    void MoveBack();
    void MoveToNextLines();
    void MoveTo();
    void EraseInScreen();
    void EraseInLine();
    void EraseWholeLine();
    void ScrollOneUp();
    void ScrollOneDown();
    void DoNothing();
    void SelectGraphicRendition();
    void ReportStatus();
    void ReportCursor();
    void SelectScrollRegion();
    void SaveCursor();
    void RestoreCursor();

    // The sequence without its ESC; the first byte is '['. A NUL fits behind the longest one.
    std::array<char, 256> m_szEscape{};
    std::size_t m_nEscapeLength = 0;
    int m_nSavedRow = 0;
    int m_nSavedColumn = 0;
};
