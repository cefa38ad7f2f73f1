#include "tests/support/Screen.h"

#include <bit>
#include <span>
#include <utf8proc.h>

namespace {

std::string TextOfCells(std::span<const VTermScreenCell> cells) {
    std::string text;
    for (const VTermScreenCell& cell : cells) {
        // The right half of a wide character.
        if (cell.chars[0] == static_cast<uint32_t>(-1))
            continue;
        if (cell.chars[0] == 0)
            text += ' ';
        for (int index = 0; index < VTERM_MAX_CHARS_PER_CELL && cell.chars[index] != 0; ++index) {
            utf8proc_uint8_t bytes[4];
            const auto character = static_cast<utf8proc_int32_t>(cell.chars[index]);
            const auto count = static_cast<std::size_t>(utf8proc_encode_char(character, bytes));
            text.append(reinterpret_cast<const char*>(bytes), count);
        }
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

// How many bytes at the end begin a character whose other bytes are still to come.
std::size_t CountCutOff(const std::string& bytes) {
    std::size_t count = 1;
    while (count < bytes.size() && (bytes[bytes.size() - count] & 0xC0) == 0x80)
        ++count;
    const auto lead = bytes.empty() ? '\0' : bytes[bytes.size() - count];
    const int length = std::countl_one(static_cast<unsigned char>(lead));
    return static_cast<std::size_t>(length) > count ? count : 0;
}

// The user of the fallbacks is the list of oddities.
int Note(void* user, std::string oddity) {
    static_cast<std::vector<std::string>*>(user)->push_back(std::move(oddity));
    return 1;
}

int NoteControl(unsigned char control, void* user) {
    return Note(user, "control " + std::to_string(control));
}
int NoteSequence(const char*, const long[], int, const char*, char command, void* user) {
    return Note(user, std::string("CSI ") + command);
}
int NoteText(const char* command, size_t length, void* user) {
    return Note(user, "string " + std::string(command, length));
}

const VTermParserCallbacks kFallbacks = {nullptr,  NoteControl, nullptr, NoteSequence,
                                         NoteText, NoteText,    nullptr};

} // namespace

const VTermScreenCallbacks CScreen::kCallbacks = {
    nullptr,
    nullptr,
    nullptr,
    [](VTermProp property, VTermValue* value, void* user) {
        static_cast<CScreen*>(user)->SetProperty(property, *value);
        return 1;
    },
    [](void* user) { return ++static_cast<CScreen*>(user)->m_nBells; },
    nullptr,
    [](int columns, const VTermScreenCell* cells, void* user) {
        const std::span row(cells, static_cast<std::size_t>(columns));
        static_cast<CScreen*>(user)->m_scrollback.push_back(TextOfCells(row));
        return 1;
    },
    nullptr,
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
    else if (property == VTERM_PROP_CURSORVISIBLE)
        m_bCursorVisible = value.boolean;
    else
        m_oddities.push_back("property " + std::to_string(property));
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
