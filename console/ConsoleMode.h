// The terminal's line modes: raw while the console is taken over, as they were found afterwards,
// whatever ends the process.
//
// One object lives as long as the process. TakeOver and GiveBack belong to the thread that takes
// the console over; Rescue may be called from a signal handler on any thread.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <termios.h>

namespace platform {

class CConsoleMode {
  public:
    // Of the keys: all, until the terminal is taken again.
    static constexpr std::size_t kEvery = SIZE_MAX;

    // Makes the terminals behind the two descriptors raw: keys as they are typed, no echo,
    // Ctrl+\ the only key that is a signal; output unprocessed if the output is drawn on as a
    // terminal. What is no terminal is left alone.
    //
    // Returns how many bytes wait to be read that were typed before, while Enter was made LF. In
    // the background the terminals belong to somebody else and stay as they are; kEvery then.
    std::size_t TakeOver(int input, int output, bool drawsOnOutput);
    // Brings the modes back that were found when the terminals were first in the foreground, and
    // makes the terminals raw again after that; returns as TakeOver.
    void GiveBack();
    std::size_t TakeAgain();
    // Whether the terminals were in the background when they were last to be taken, and no longer
    // are.
    bool HasComeForward() const;
    // The character that the keyboard's Backspace key sends, as the terminal's settings have it; 8
    // where they have none, or one that is no control character.
    std::uint8_t EraseCharacter() const;
    // Drops what was typed and has not been read.
    void DiscardInput();

    // The descriptor, besides those of TakeOver, through which Rescue speaks to the terminal; what
    // leaves the alternate screen, while it is shown (null: it is not); and whether the title has
    // to come back.
    void SetRescueOutput(int descriptor) { m_nRescueOutput.store(descriptor); }
    void SetScreenBack(const char* sequence) { m_screenBack.store(sequence); }
    void SetTitleChanged(bool changed) { m_bTitleChanged.store(changed); }

    // Leaves the terminal usable from wherever the process is: a sequence that was cut off is
    // ended, the screen, colours, title and modes return, the cursor goes below everything.
    // Async-signal-safe; does nothing the second time, nor in a child of the process.
    void Rescue();

  private:
    struct Terminal {
        int descriptor = -1;
        bool isInput = false;
        bool isDrawnOn = false;
        // What was found in the background was somebody else's for a while.
        std::atomic<bool> isFound = false;
        termios found = {};
        termios raw = {};
    };
    static constexpr int kMostTerminals = 2;

    void Add(int descriptor, bool isInput, bool isDrawnOn);
    std::size_t Take(Terminal& terminal);
    void Restore();
    static bool IsForeground(const Terminal& terminal);
    static void Apply(const Terminal& terminal, const termios& mode);

    Terminal m_terminals[kMostTerminals];
    int m_nTerminals = 0;
    bool m_bInBackground = false;
    std::atomic<int> m_nProcess = 0; // the process that has taken the console over; 0: none
    std::atomic<int> m_nRescueOutput = -1;
    std::atomic<const char*> m_screenBack = nullptr;
    std::atomic<bool> m_bTitleChanged = false;
};

} // namespace platform
