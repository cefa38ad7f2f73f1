// The keys in the bytes that terminals send.
#include "console/Console.h"
#include "console/ConsoleInput.h"
#include "console/ConsoleKeyTable.h"
#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"
#include "tests/support/PseudoTerminal.h"

using namespace platform;

namespace {

constexpr DWORD kShift = SHIFT_PRESSED;
constexpr DWORD kAlt = LEFT_ALT_PRESSED;
constexpr DWORD kCtrl = LEFT_CTRL_PRESSED;

struct Key {
    WORD code;
    DWORD held;
    std::vector<std::string_view> sequences;
};

// As xterm, the Linux console, screen, tmux and rxvt send them.
const Key kKeys[] = {
    {VK_UP, 0, {"\x1b[A", "\x1bOA"}},
    {VK_DOWN, 0, {"\x1b[B"}},
    {VK_RIGHT, 0, {"\x1b[C"}},
    {VK_LEFT, 0, {"\x1b[D", "\x1bOD"}},
    {VK_HOME, 0, {"\x1b[H", "\x1bOH", "\x1b[1~", "\x1b[7~"}},
    {VK_END, 0, {"\x1b[F", "\x1bOF", "\x1b[4~", "\x1b[8~"}},
    {VK_INSERT, 0, {"\x1b[2~"}},
    {VK_DELETE, 0, {"\x1b[3~"}},
    {VK_PRIOR, 0, {"\x1b[5~"}},
    {VK_NEXT, 0, {"\x1b[6~"}},
    {VK_F1, 0, {"\x1bOP", "\x1b[[A", "\x1b[11~"}},
    {VK_F2, 0, {"\x1bOQ"}},
    {VK_F3, 0, {"\x1bOR"}},
    {VK_F4, 0, {"\x1bOS", "\x1b[[D", "\x1b[14~"}},
    {VK_F5, 0, {"\x1b[15~", "\x1b[[E"}},
    {VK_F6, 0, {"\x1b[17~"}},
    {VK_F1, kShift, {"\x1b[1;2P"}},
    {VK_UP, kShift, {"\x1b[1;2A", "\x1b[a"}},
    {VK_DELETE, kShift, {"\x1b[3$"}},
    {VK_DOWN, kAlt, {"\x1b[1;3B"}},
    {VK_END, kAlt, {"\x1b[1;9F"}}, // Meta
    {VK_F4, kAlt, {"\x1b[1;3S", "\x1bO3S"}},
    {VK_UP, kCtrl, {"\x1b[5A"}},
    {VK_RIGHT, kCtrl, {"\x1b[1;5C"}},
    {VK_LEFT, kCtrl, {"\x1bOd"}},
    {VK_HOME, kCtrl, {"\x1b[7^"}},
    {VK_DELETE, kCtrl, {"\x1b[3;5~"}},
    {VK_PRIOR, kShift | kCtrl, {"\x1b[5@"}},
    {VK_LEFT, kShift | kAlt | kCtrl, {"\x1b[1;8D"}},
    {VK_F6, kShift | kAlt | kCtrl, {"\x1b[17;16~"}},
};

// A terminal's keyboard, or, without a type, a pipe in its place.
struct Keyboard {
    explicit Keyboard(const char* type) {
        termios raw = line.GetSettings();
        cfmakeraw(&raw);
        line.ApplySettings(raw);
        input->Use(type != nullptr ? line.GetSlave() : pipe.reader.Get(), type);
        input->SetErase(0x7F);
        writer = type != nullptr ? line.GetMaster() : pipe.writer.Get();
        handle = RegisterHandle(input);
    }
    ~Keyboard() { CloseHandle(handle); }

    void Type(std::string_view bytes) const {
        ASSERT_EQ(write(writer, bytes.data(), bytes.size()), static_cast<ssize_t>(bytes.size()));
    }
    // Waits for the next record, at most a long time; one of type 0 at the end of the input.
    INPUT_RECORD Take() const {
        INPUT_RECORD record{};
        while (input->Take(record) == CConsoleInput::Taken::Nothing)
            EXPECT_EQ(WaitForSingleObject(handle, 10'000), WAIT_OBJECT_0);
        return record;
    }
    Pipe pipe;
    CPseudoTerminal line;
    int writer;
    std::shared_ptr<CConsoleInput> input = std::make_shared<CConsoleInput>();
    HANDLE handle;
};

void ExpectKey(const INPUT_RECORD& record, WORD code, DWORD held) {
    const KEY_EVENT_RECORD& key = record.Event.KeyEvent;
    EXPECT_EQ(record.EventType, KEY_EVENT);
    EXPECT_EQ(key.uChar.AsciiChar, 0);
    EXPECT_EQ(key.wVirtualKeyCode, code);
    EXPECT_EQ(key.wVirtualScanCode, ScanCodeOf(code));
    EXPECT_EQ(key.dwControlKeyState, held);
}

// The characters up to this one; a key is told as its code in brackets, Alt as an A, and a byte
// that continues a character behind a +.
constexpr char kLast = 0x1F;
std::string KeysIn(std::string_view typed, const char* type = nullptr) {
    const Keyboard keyboard(type);
    keyboard.Type(std::string(typed) + kLast);
    std::string text;
    for (;;) {
        const KEY_EVENT_RECORD key = keyboard.Take().Event.KeyEvent;
        if (key.uChar.AsciiChar == kLast)
            return text;
        if (type != nullptr && key.wRepeatCount == 0)
            text += '+';
        if (key.uChar.AsciiChar == 0 && key.wVirtualKeyCode != 0x32)
            text += "<" + std::to_string(key.wVirtualKeyCode) + ">";
        else
            text += (key.dwControlKeyState & kAlt ? "A" : "") + std::string(1, key.uChar.AsciiChar);
    }
}

} // namespace

class ConsoleKeysTest : public ::testing::TestWithParam<const char*> {};

// Whatever the terminal's own description adds.
TEST_P(ConsoleKeysTest, EverySequenceWholeAndSplit) {
    const Keyboard keyboard(GetParam());
    for (const Key& key : kKeys) {
        for (const std::string_view bytes : key.sequences) {
            SCOPED_TRACE(bytes.substr(1));
            keyboard.Type("\x1b" + std::string(bytes));
            ExpectKey(keyboard.Take(), key.code, key.held | kAlt);
            for (std::size_t split = 1; split <= bytes.size(); ++split) {
                keyboard.Type(bytes.substr(0, split));
                WaitForSingleObject(keyboard.handle, 0); // reads the first part
                keyboard.Type(bytes.substr(split));
                ExpectKey(keyboard.Take(), key.code, key.held);
            }
        }
    }
}

INSTANTIATE_TEST_SUITE_P(All, ConsoleKeysTest,
                         ::testing::Values("xterm-256color", "linux", "screen-256color",
                                           "tmux-256color", "rxvt-unicode-256color",
                                           "no-such-terminal"));

TEST(ConsoleKeys, OfAPipeWhatIsNoKeyArrivesByteByByte) {
    static constexpr std::string_view kTyped[] = {
        "plain text \xC3\xA9\xFF",
        std::string_view("\0\x01\x03\x1A\x11\x13", 6),
        "\x1b[18~\x1b[200~pasted\x1b[201~\x1b[<0;1;1M", // F7, a bracketed paste, a mouse
        "\x1b[1;17A\x1b[1;A\x1b[;5A\x1b[99~\x1b[[F\x1bOZ",
        "\x1b\x1b\x1bx\x1b[\x1b]\x1bO",
        "\x1bz\x1b[",
    };
    for (const std::string_view typed : kTyped)
        EXPECT_EQ(KeysIn(typed), typed);
    // The rest of a broken sequence may begin a key.
    EXPECT_EQ(KeysIn("\x1b[\x1b[A\x1b[1;\x1b\x1bOBz"), "\x1b[<38>\x1b[1;<40>z");
    for (std::size_t before = 4090; before <= 4097; ++before) { // across the end of the buffer
        const std::string text(before, 'x');
        EXPECT_EQ(KeysIn(text + "\x1b[15~\x1b[A"), text + "<116><38>");
    }
}

// Nothing but a key begins with ESC there; what is no key of ours is <252>.
TEST(ConsoleKeys, OfAKeyboardEverySequenceIsOneKey) {
    static constexpr std::pair<std::string_view, std::string_view> kTyped[] = {
        {"\x1b[18~\x1b[23;2~\x1b[Z", "<252><252><252>"},                 // F7, Shift+F11, Shift+Tab
        {"\x1b[E\x1bOE\x1bOu\x1b[I\x1b[O", "<252><252><252><252><252>"}, // keypad 5, focus
        {"\x1b[23$\x1b[23@\x1b[[F\x1bO2R", "<252><252><252><114>"},      // rxvt, Linux, konsole
        {"\x1b[?1;2$y\x1b[<0;10;1M\x1b[97;5u", "<252><252><252>"},
        {"\x1b[M \xFF!a\x1b[M\ra\x1b[M", "<252>a<252>\ra<252>"}, // old mouse reports
        {"\x1b[200~a\x1b[A\x1b[201~", "<252>a<38><252>"},        // a bracketed paste
        {"\x1b\x1b[19~\x1b\x1b\x1b[A", "<252>\x1b<38>"},         // Alt+F8, Esc and Alt+Up
        {"\x1bxy\x1b\r\x1b\x7F\x7F\x08", "AxyA\rA\x08\x08\x08"},
        {"\x1b\xC3\xA9\xE2\x82\xACz\xFF\xC3z\xA9", "A\xC3+\xA9\xE2+\x82+\xACz\xFF\xC3z\xA9"},
        {"\x1b\x1bz\x1b[\r\x1bO\x1b\x1b[\t", "\x1b"
                                             "AzA[\rAO\x1b"
                                             "A[\t"},
        {"\x1b[1;\x1b[A\x1b[1;\xC3\xA9", "<252><38><252>\xC3+\xA9"}, // cut off
    };
    for (const auto& [typed, keys] : kTyped)
        EXPECT_EQ(KeysIn(typed, "xterm"), keys);
    // One that does not end.
    EXPECT_EQ(KeysIn("\x1b[" + std::string(70, '1') + 'A', "xterm"), "<252>11111111A");
    EXPECT_EQ(KeysIn("\x1b\t\x1b\n", "linux"), "<252>A\n"); // its Shift+Tab
}

TEST(ConsoleKeys, ASlowLineSplitsNoKey) {
    const Keyboard keyboard("xterm");
    for (const char* part : {"\x1b[", "1", ";3"}) {
        keyboard.Type(part);
        EXPECT_EQ(WaitForSingleObject(keyboard.handle, 0), WAIT_TIMEOUT);
        EXPECT_EQ(WaitForSingleObject(keyboard.handle, 120), WAIT_TIMEOUT);
    }
    keyboard.Type("S");
    ExpectKey(keyboard.Take(), VK_F4, kAlt);
    keyboard.Type("\x1b");
    EXPECT_EQ(keyboard.Take().Event.KeyEvent.uChar.AsciiChar, '\x1b');
    keyboard.Type("\x1b[1;");
    ExpectKey(keyboard.Take(), CConsoleKeys::kOther, 0);
}

TEST(ConsoleKeys, TheTerminalsOwnSequencesAreKnown) {
    const Keyboard keyboard("sun"); // of the system's basic set; like no other
    keyboard.Type("\x1b[224z\x1b[216z\x1bOP");
    for (const WORD code : {VK_F1, VK_PRIOR, VK_F1})
        ExpectKey(keyboard.Take(), code, 0);

    CConsoleKeys table;
    EXPECT_TRUE(table.Add("\x1b[P", VK_F1, 0)); // another meaning takes the place of the first
    EXPECT_TRUE(table.Add("\x1b[P", VK_DELETE, 0));
    const auto match = table.Find(reinterpret_cast<const std::uint8_t*>("\x1b[Px"), 4, false);
    EXPECT_EQ(match.virtualKey, VK_DELETE);
    EXPECT_EQ(match.length, 3);
}

TEST(ConsoleKeys, TheTableRefusesWhatIsNoSequence) {
    auto keys = std::make_unique<CConsoleKeys>();
    EXPECT_FALSE(keys->Add("\x7F", VK_DELETE, 0));
    EXPECT_FALSE(keys->Add("\x1b", VK_HOME, 0));
    EXPECT_FALSE(keys->Add("\x1b\x1bO", VK_HOME, 0));
    EXPECT_FALSE(keys->Add("\x1b[234567890123456", VK_HOME, 0));
    EXPECT_TRUE(keys->Add("\x1b[23456789012345", VK_HOME, 0));
    AddKnownKeys(*keys);
    EXPECT_TRUE(keys->Add("\x1b[zyxwvutsrqponm", VK_HOME, 0)) << "the table is full";
}

TEST(ConsoleInput, EventsComeBeforeKeysAndTheEndStays) {
    Keyboard keyboard(nullptr);
    keyboard.Type("a");
    keyboard.input->AddSizeEvent({100, 30});
    keyboard.input->AddMenuEvent();
    EXPECT_EQ(keyboard.Take().EventType, MENU_EVENT);
    const INPUT_RECORD size = keyboard.Take();
    EXPECT_EQ(size.EventType, WINDOW_BUFFER_SIZE_EVENT);
    EXPECT_EQ(size.Event.WindowBufferSizeEvent.X, 100);
    EXPECT_EQ(keyboard.Take().Event.KeyEvent.uChar.AsciiChar, 'a');
    keyboard.pipe.writer.Reset();
    for (int time = 0; time < 2; ++time) {
        INPUT_RECORD record{};
        EXPECT_EQ(WaitForSingleObject(keyboard.handle, INFINITE), WAIT_OBJECT_0);
        EXPECT_EQ(keyboard.input->Take(record), CConsoleInput::Taken::End);
    }
    CConsoleInput closed;
    closed.Use(-1, nullptr);
    INPUT_RECORD record{};
    EXPECT_EQ(closed.Take(record), CConsoleInput::Taken::End);
}
