// The text of the console's screen: turns written bytes into what the terminal draws. Nothing that
// is written reaches the terminal as a control function. On an output that is no terminal, text
// goes out plain, and CR LF becomes LF.
//
// Nearly all that a device sends is printable ASCII, so there is a fast path, WriteRun: it puts as
// many such characters into the buffer at once as need nothing else, and advances the cursor. That
// holds while nothing is left undecided here (part of a character, a fill, a CR), while the cursor
// says so (CConsoleCursor::RunColumns: the terminal's cursor is where ours is, in a row that text
// has reached before, and the last column stays free), while the colours are those wanted, and
// while the buffer has room (CConsoleGather::RunBytes). It is asked once for a run. Where it ends,
// one byte goes the long way, WriteByte, which looks at everything and makes all of this true
// again.
//
// Part of the console's output; used by the thread that has taken the console over.
#pragma once

#include "console/ConsoleColours.h"
#include "console/ConsoleCursor.h"
#include "console/ConsoleFill.h"
#include "console/ConsoleGlyphs.h"

namespace platform {

class CConsoleText {
  public:
    CConsoleText(CConsoleGather& gather, CConsoleCursor& cursor, CConsoleColours& colours,
                 CConsoleFill& fill)
        : m_gather(gather), m_cursor(cursor), m_colours(colours), m_fill(fill) {}

    void Use(bool isTerminal) { m_bTerminal = isTerminal; }

    // FALSE once output is gone, and when the console was given back while it waited for room.
    bool Write(const std::uint8_t* bytes, std::size_t count);

    // What is left undecided is decided, because something else than text comes: part of a
    // character is drawn as the bytes that it is; so is a remembered fill.
    void Settle();
    // Plain text: a CR that might have become part of a CR LF is put. The caller sees to the room.
    void EndHeldReturn();
    // What is left undecided is dropped.
    void Forget();

  private:
    const std::uint8_t* WriteRun(const std::uint8_t* bytes, const std::uint8_t* end);
    bool WriteByte(std::uint8_t byte);
    void WriteCharacter(const CUtf8Decoder& character);
    void WriteControl(std::uint8_t byte);
    void WritePlainControl(std::uint8_t byte);
    void Draw(const Glyph& glyph);
    void DrawTab();

    CConsoleGather& m_gather;
    CConsoleCursor& m_cursor;
    CConsoleColours& m_colours;
    CConsoleFill& m_fill;
    CUtf8Decoder m_decoder;
    bool m_bTerminal = false;
    bool m_bHeldReturn = false;
};

} // namespace platform
