#include "tests/endtoend/Screen.h"

namespace {

void AppendUtf8(std::string& text, uint32_t character) {
    const auto append = [&text](uint32_t byte) { text += static_cast<char>(byte); };
    if (character < 0x80)
        return append(character);
    if (character < 0x800) {
        append(0xC0 | character >> 6);
    } else {
        if (character < 0x10000) {
            append(0xE0 | character >> 12);
        } else {
            append(0xF0 | character >> 18);
            append(0x80 | (character >> 12 & 0x3F));
        }
        append(0x80 | (character >> 6 & 0x3F));
    }
    append(0x80 | (character & 0x3F));
}

std::string TextOfCells(const VTermScreenCell* cells, int count) {
    std::string text;
    for (int column = 0; column < count; ++column) {
        const VTermScreenCell& cell = cells[column];
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
            static_cast<CScreen*>(user)->m_scrollback.push_back(TextOfCells(cells, columns));
            return 1;
        },
    .sb_popline = nullptr,
};

const VTermParserCallbacks CScreen::kFallbacks = {
    .text = nullptr,
    .control =
        [](unsigned char control, void* user) {
            static_cast<CScreen*>(user)->m_oddities.push_back("control " + std::to_string(control));
            return 1;
        },
    .escape = nullptr,
    .csi =
        [](const char*, const long[], int, const char*, char command, void* user) {
            static_cast<CScreen*>(user)->m_oddities.push_back(std::string("CSI ") + command);
            return 1;
        },
    .osc =
        [](const char* command, size_t length, void* user) {
            static_cast<CScreen*>(user)->m_oddities.push_back("OSC " +
                                                              std::string(command, length));
            return 1;
        },
    .dcs =
        [](const char*, size_t, void* user) {
            static_cast<CScreen*>(user)->m_oddities.emplace_back("DCS");
            return 1;
        },
    .resize = nullptr,
};

CScreen::CScreen(int rows, int columns)
    : m_pTerminal(vterm_new(rows, columns)), m_pScreen(vterm_obtain_screen(m_pTerminal)) {
    vterm_set_utf8(m_pTerminal, 1);
    vterm_output_set_callback(
        m_pTerminal,
        [](const char* bytes, size_t length, void* user) {
            static_cast<CScreen*>(user)->m_replies.append(bytes, length);
        },
        this);
    vterm_screen_enable_altscreen(m_pScreen, 1);
    vterm_screen_reset(m_pScreen, 1);
    vterm_screen_set_callbacks(m_pScreen, &kCallbacks, this);
    vterm_screen_set_unrecognised_fallbacks(m_pScreen, &kFallbacks, this);
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
    vterm_input_write(m_pTerminal, bytes.data(), bytes.size());
    vterm_screen_flush_damage(m_pScreen);
}

std::string CScreen::GetRow(int row) const {
    int rows = 0;
    int columns = 0;
    vterm_get_size(m_pTerminal, &rows, &columns);
    std::vector<VTermScreenCell> cells;
    for (int column = 0; column < columns; ++column)
        cells.push_back(GetCell(row, column));
    return TextOfCells(cells.data(), columns);
}

std::string CScreen::GetText() const {
    int rows = 0;
    int columns = 0;
    vterm_get_size(m_pTerminal, &rows, &columns);
    std::string text;
    for (int row = 0; row < rows; ++row)
        text += GetRow(row) + '\n';
    text.erase(text.find_last_not_of('\n') + 1);
    return text;
}

int CScreen::FindRow(std::string_view text) const {
    int rows = 0;
    int columns = 0;
    vterm_get_size(m_pTerminal, &rows, &columns);
    for (int row = 0; row < rows; ++row)
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
