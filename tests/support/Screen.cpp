#include "tests/support/Screen.h"

#include <algorithm>
#include <span>

namespace {

void AppendUtf8(std::string& text, uint32_t character) {
    constexpr uint32_t kLead[] = {0, 0xC0, 0xE0, 0xF0};
    const int tails = character < 0x80 ? 0 : character < 0x800 ? 1 : character < 0x10000 ? 2 : 3;
    text += static_cast<char>(kLead[tails] | character >> 6 * tails);
    for (int tail = tails - 1; tail >= 0; --tail)
        text += static_cast<char>(0x80 | (character >> 6 * tail & 0x3F));
}

std::string TextOfCells(std::span<const VTermScreenCell> cells) {
    std::string text;
    for (const VTermScreenCell& cell : cells) {
        // The right half of a wide character.
        if (cell.chars[0] == static_cast<uint32_t>(-1))
            continue;
        if (cell.chars[0] == 0)
            text += ' ';
        for (int index = 0; index < VTERM_MAX_CHARS_PER_CELL && cell.chars[index] != 0; ++index)
            AppendUtf8(text, cell.chars[index]);
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// How many bytes at the end begin a character whose other bytes are still to come.
std::size_t CountCutOff(std::string_view bytes) {
    for (std::size_t count = 1; count <= std::min<std::size_t>(3, bytes.size()); ++count) {
        const auto byte = static_cast<unsigned char>(bytes[bytes.size() - count]);
        if (byte >= 0xC0)
            return count < (byte < 0xE0 ? 2U : byte < 0xF0 ? 3U : 4U) ? count : 0;
        if (byte < 0x80)
            return 0;
    }
    return 0;
}

// The user of the fallbacks is the list of oddities.
int Note(void* user, std::string oddity) {
    static_cast<std::vector<std::string>*>(user)->push_back(std::move(oddity));
    return 1;
}

const VTermParserCallbacks kFallbacks = {
    .text = nullptr,
    .control = [](unsigned char control,
                  void* user) { return Note(user, "control " + std::to_string(control)); },
    .escape = nullptr,
    .csi = [](const char*, const long[], int, const char*, char command,
              void* user) { return Note(user, std::string("CSI ") + command); },
    .osc = [](const char* command, size_t length,
              void* user) { return Note(user, "OSC " + std::string(command, length)); },
    .dcs = [](const char*, size_t, void* user) { return Note(user, "DCS"); },
    .resize = nullptr,
};

} // namespace

const VTermScreenCallbacks CScreen::kCallbacks = {
    .damage = nullptr,
    .moverect = nullptr,
    .movecursor = nullptr,
    .settermprop =
        [](VTermProp property, VTermValue* value, void* user) {
            static_cast<CScreen*>(user)->SetProperty(property, *value);
            return 1;
        },
    .bell = [](void* user) { return ++static_cast<CScreen*>(user)->m_nBells; },
    .resize = nullptr,
    .sb_pushline =
        [](int columns, const VTermScreenCell* cells, void* user) {
            const std::span row(cells, static_cast<std::size_t>(columns));
            static_cast<CScreen*>(user)->m_scrollback.push_back(TextOfCells(row));
            return 1;
        },
    .sb_popline = nullptr,
};

CScreen::CScreen(int rows, int columns)
    : m_pTerminal(vterm_new(rows, columns)), m_pScreen(vterm_obtain_screen(m_pTerminal)) {
    vterm_set_utf8(m_pTerminal, 1);
    vterm_output_set_callback(
        m_pTerminal,
        [](const char* bytes, size_t length, void* user) {
            static_cast<std::string*>(user)->append(bytes, length);
        },
        &m_replies);
    vterm_screen_enable_altscreen(m_pScreen, 1);
    vterm_screen_reset(m_pScreen, 1);
    vterm_screen_set_callbacks(m_pScreen, &kCallbacks, this);
    vterm_screen_set_unrecognised_fallbacks(m_pScreen, &kFallbacks, &m_oddities);
}

void CScreen::SetProperty(VTermProp property, const VTermValue& value) {
    if (property == VTERM_PROP_TITLE)
        m_title = value.string;
    if (property == VTERM_PROP_CURSORVISIBLE)
        m_bCursorVisible = value.boolean;
    if (property == VTERM_PROP_ALTSCREEN)
        m_oddities.emplace_back("alternate screen");
    if (property == VTERM_PROP_MOUSE)
        m_oddities.emplace_back("mouse");
    if (property == VTERM_PROP_REVERSE)
        m_oddities.emplace_back("reverse screen");
}

void CScreen::Feed(std::string_view bytes) {
    m_unfed += bytes;
    const std::size_t whole = m_unfed.size() - CountCutOff(m_unfed);
    vterm_input_write(m_pTerminal, m_unfed.data(), whole);
    vterm_screen_flush_damage(m_pScreen);
    m_unfed.erase(0, whole);
}

VTermPos CScreen::GetSize() const {
    VTermPos size{};
    vterm_get_size(m_pTerminal, &size.row, &size.col);
    return size;
}

std::string CScreen::GetRow(int row) const {
    std::vector<VTermScreenCell> cells;
    for (int column = 0; column < GetSize().col; ++column)
        cells.push_back(GetCell(row, column));
    return TextOfCells(cells);
}

std::string CScreen::GetText() const {
    std::string text;
    for (int row = 0; row < GetSize().row; ++row)
        text += GetRow(row) + '\n';
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

int CScreen::FindRow(std::string_view text) const {
    for (int row = 0; row < GetSize().row; ++row)
        if (GetRow(row).find(text) != std::string::npos)
            return row;
    return -1;
}

VTermPos CScreen::GetCursor() const {
    VTermPos cursor{};
    vterm_state_get_cursorpos(vterm_obtain_state(m_pTerminal), &cursor);
    return cursor;
}

VTermScreenCell CScreen::GetCell(int row, int column) const {
    VTermScreenCell cell{};
    vterm_screen_get_cell(m_pScreen, {row, column}, &cell);
    return cell;
}

int IndexOf(const VTermColor& colour) {
    if (colour.type & VTERM_COLOR_DEFAULT_MASK)
        return -1;
    return VTERM_COLOR_IS_INDEXED(&colour) ? colour.indexed.idx : -2;
}
