// Bytes that are no printable ASCII go through the decoder, one by one: what it completes is drawn
// as its glyph, what it finds broken as the pictures of its bytes. Drawing is always the same three
// steps: colours, cursor before the character, cursor behind it.
#include "console/ConsoleText.h"

#include <algorithm>

namespace platform {
namespace {

constexpr std::uint8_t kBell = 0x07;
constexpr std::uint8_t kBackspace = 0x08;
constexpr std::uint8_t kTab = 0x09;
constexpr std::uint8_t kLineFeed = 0x0A;
constexpr std::uint8_t kCarriageReturn = 0x0D;
constexpr int kTabColumns = 8;

bool IsPrintable(std::uint8_t byte) {
    return byte >= 0x20 && byte < 0x7F;
}

} // namespace

bool CConsoleText::Write(const std::uint8_t* bytes, std::size_t count) {
    const std::uint8_t* const end = bytes + count;
    while (bytes != end) {
        if (IsPrintable(*bytes))
            bytes = WriteRun(bytes, end);
        if (bytes != end && !WriteByte(*bytes++))
            return false;
    }
    return true;
}

// Writes from the front as far as the fast path goes; returns where that is.
const std::uint8_t* CConsoleText::WriteRun(const std::uint8_t* bytes, const std::uint8_t* end) {
    if (!m_decoder.IsIdle() || m_fill.IsPending() || m_bHeldReturn)
        return bytes;
    // A change of colours alone is no reason for the long way.
    if (!m_colours.AreSet() && m_cursor.RunColumns() != 0 && m_gather.EnsureRoom())
        m_colours.Sync();
    if (!m_colours.AreSet())
        return bytes;
    const std::size_t most = std::min({static_cast<std::size_t>(m_cursor.RunColumns()),
                                       m_gather.RunBytes(), static_cast<std::size_t>(end - bytes)});
    const std::size_t run = m_gather.PutPrintable(bytes, most);
    m_cursor.Advance(static_cast<int>(run));
    return bytes + run;
}

bool CConsoleText::WriteByte(std::uint8_t byte) {
    m_fill.End();
    if (!m_gather.EnsureRoom())
        return false;
    m_decoder.Read(
        byte, [this](const CUtf8Decoder& character) { WriteCharacter(character); },
        [this](std::uint8_t stray) { Draw(GlyphOf(stray)); });
    return true;
}

void CConsoleText::WriteCharacter(const CUtf8Decoder& character) {
    if (character.Code() < 0x20)
        WriteControl(static_cast<std::uint8_t>(character.Code()));
    else
        Draw(GlyphOf(character, m_gather.Set()));
}

void CConsoleText::WriteControl(std::uint8_t byte) {
    if (!m_bTerminal)
        return WritePlainControl(byte);
    switch (byte) {
    case kBell:
        m_gather.Put(kBell);
        break;
    case kBackspace:
        m_cursor.Backspace();
        break;
    case kTab:
        DrawTab();
        break;
    case kLineFeed:
        m_colours.SyncBackground();
        m_cursor.LineFeed();
        break;
    case kCarriageReturn:
        m_cursor.CarriageReturn();
        break;
    default:
        Draw(GlyphOf(byte));
    }
}

void CConsoleText::WritePlainControl(std::uint8_t byte) {
    if (byte == kCarriageReturn) { // several of them, as modems echo one, do what one does
        m_bHeldReturn = true;
        return;
    }
    if (byte == kLineFeed) // takes the place of a CR before it
        m_bHeldReturn = false;
    EndHeldReturn();
    if (byte == kLineFeed || byte == kBackspace || byte == kTab || byte == kBell)
        m_gather.Put(byte);
    else
        Draw(GlyphOf(byte));
}

void CConsoleText::Draw(const Glyph& glyph) {
    if (glyph.text.empty())
        return;
    if (!m_bTerminal) {
        EndHeldReturn();
        m_cursor.BeginPlain(); // before the columns come to their end
        m_gather.PutText(glyph.text);
        return;
    }
    if (glyph.columns > m_cursor.Columns())
        return Draw(kReplacement);
    m_colours.Sync();
    if (glyph.columns == 0)
        m_cursor.Sync();
    else
        m_cursor.BeforeCharacter(glyph.columns);
    m_gather.PutText(glyph.text);
    if (glyph.columns != 0)
        m_cursor.AfterCharacter(glyph.columns);
}

void CConsoleText::DrawTab() {
    const int next = m_cursor.Column() / kTabColumns * kTabColumns + kTabColumns;
    for (int column = std::min(next, m_cursor.Columns() - 1); column > m_cursor.Column();)
        Draw({" ", 1});
}

void CConsoleText::Settle() {
    if (!m_decoder.IsIdle() && m_gather.EnsureRoom())
        m_decoder.GiveUp([this](std::uint8_t stray) { Draw(GlyphOf(stray)); });
    m_fill.End();
}

void CConsoleText::EndHeldReturn() {
    if (m_bHeldReturn)
        m_gather.Put(kCarriageReturn);
    m_bHeldReturn = false;
}

void CConsoleText::Forget() {
    m_decoder.Drop();
    m_bHeldReturn = false;
}

} // namespace platform
