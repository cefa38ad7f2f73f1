// The keys in the bytes that terminals send.
#include "console/Console.h"
#include "console/ConsoleInput.h"
#include "console/ConsoleKeyTable.h"
#include "platform/Wait.h"
#include "platform/objects/HandleTable.h"
#include "tests/support/PseudoTerminal.h"

using namespace platform;

namespace {

// As xterm, the Linux console, screen, tmux and rxvt send them; a key is its code in brackets
// behind the modifiers held with it: Alt, Shift, Ctrl.
constexpr std::pair<std::string_view, std::string_view> kKeys[] = {
    {"\x1b[A", "<38>"},     {"\x1bOA", "<38>"},       {"\x1b[B", "<40>"},
    {"\x1b[C", "<39>"},     {"\x1b[D", "<37>"},       {"\x1bOD", "<37>"},
    {"\x1b[H", "<36>"},     {"\x1bOH", "<36>"},       {"\x1b[1~", "<36>"},
    {"\x1b[7~", "<36>"},    {"\x1b[F", "<35>"},       {"\x1bOF", "<35>"},
    {"\x1b[4~", "<35>"},    {"\x1b[8~", "<35>"},      {"\x1b[2~", "<45>"},
    {"\x1b[3~", "<46>"},    {"\x1b[5~", "<33>"},      {"\x1b[6~", "<34>"},
    {"\x1bOP", "<112>"},    {"\x1b[[A", "<112>"},     {"\x1b[11~", "<112>"},
    {"\x1bOQ", "<113>"},    {"\x1bOR", "<114>"},      {"\x1bOS", "<115>"},
    {"\x1b[[D", "<115>"},   {"\x1b[14~", "<115>"},    {"\x1b[15~", "<116>"},
    {"\x1b[[E", "<116>"},   {"\x1b[17~", "<117>"},    {"\x1b[1;2P", "S<112>"},
    {"\x1b[1;2A", "S<38>"}, {"\x1b[a", "S<38>"},      {"\x1b[3$", "S<46>"},
    {"\x1b[1;3B", "A<40>"}, {"\x1b[1;9F", "A<35>"},   {"\x1b[1;3S", "A<115>"},
    {"\x1bO3S", "A<115>"},  {"\x1b[5A", "C<38>"},     {"\x1b[1;5C", "C<39>"},
    {"\x1bOd", "C<37>"},    {"\x1b[7^", "C<36>"},     {"\x1b[3;5~", "C<46>"},
    {"\x1b[5@", "SC<33>"},  {"\x1b[1;8D", "ASC<37>"}, {"\x1b[17;16~", "ASC<117>"}};

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

// The keys up to the last character, as above; a byte that continues a character stands behind a +.
constexpr char kLast = 0x1F;
std::string KeysOn(const Keyboard& keyboard) {
    std::string text;
    for (;;) {
        const KEY_EVENT_RECORD key = keyboard.Take().Event.KeyEvent;
        const char character = key.uChar.AsciiChar;
        if (character == kLast)
            return text;
        text += key.wRepeatCount == 0 ? "+" : "";
        text += (key.dwControlKeyState & LEFT_ALT_PRESSED) != 0 ? "A" : "";
        text += (key.dwControlKeyState & SHIFT_PRESSED) != 0 ? "S" : "";
        text += (key.dwControlKeyState & LEFT_CTRL_PRESSED) != 0 ? "C" : "";
        if (character == 0)
            text += "<" + std::to_string(key.wVirtualKeyCode) + ">";
        else
            text += character;
    }
}

std::string KeysIn(std::string_view typed, const char* type = nullptr) {
    const Keyboard keyboard(type);
    keyboard.Type(std::string(typed) + kLast);
    return KeysOn(keyboard);
}

} // namespace

// Whatever the terminal's own description adds.
TEST(ConsoleKeys, EverySequenceWholeAndSplit) {
    for (const char* type : {"xterm-256color", "linux", "screen-256color", "tmux-256color",
                             "rxvt-unicode-256color", "no-such-terminal"}) {
        const Keyboard keyboard(type);
        for (const auto& [bytes, key] : kKeys) {
            for (std::size_t split = 1; split <= bytes.size(); ++split) {
                keyboard.Type(bytes.substr(0, split));
                WaitForSingleObject(keyboard.handle, 0); // reads the first part
                keyboard.Type(std::string(bytes.substr(split)) + kLast);
                EXPECT_EQ(KeysOn(keyboard), key) << type << ": ESC " << bytes.substr(1);
            }
            keyboard.Type("\x1b" + std::string(bytes) + kLast);
            EXPECT_EQ(KeysOn(keyboard), (key[0] == 'A' ? "" : "A") + std::string(key)) << type;
        }
    }
}

TEST(ConsoleKeys, OfAPipeWhatIsNoKeyArrivesByteByByte) {
    static constexpr std::string_view kTyped[] = {
        "plain text \xFF\x01\x03\x1A\x11\x13",
        "\x1b[18~\x1b[200~pasted\x1b[201~\x1b[<0;1;1M", // F7, a bracketed paste, a mouse
        "\x1b[1;17A\x1b[1;A\x1b[;5A\x1b[99~\x1b[[F\x1bOZ",
        "\x1b\x1b\x1bx\x1b[\x1b]\x1bO",
        "\x1bz\x1b[",
    };
    for (const std::string_view typed : kTyped)
        EXPECT_EQ(KeysIn(typed), typed);
    EXPECT_EQ(KeysIn({"\0\xC3\xA9", 3}), "C<50>\xC3+\xA9"); // Ctrl+@
    // The rest of a broken sequence may begin a key.
    EXPECT_EQ(KeysIn("\x1b[\x1b[A\x1b[1;\x1b\x1bOBz"), "\x1b[<38>\x1b[1;A<40>z");
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
        {"\x1b[23$\x1b[23@\x1b[[F\x1bO2R", "<252><252><252>S<114>"},     // rxvt, Linux, konsole
        {"\x1b[?1;2$y\x1b[<0;10;1M\x1b[97;5u", "<252><252><252>"},
        {"\x1b[M \xFF!a\x1b[M\ra\x1b[M", "<252>a<252>\ra<252>"}, // old mouse reports
        {"\x1b[200~a\x1b[A\x1b[201~", "<252>a<38><252>"},        // a bracketed paste
        {"\x1b\x1b[19~\x1b\x1b\x1b[A", "<252>\x1b"
                                       "A<38>"}, // Alt+F8, Esc and Alt+Up
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
    keyboard.Type(std::string("S") + kLast);
    EXPECT_EQ(KeysOn(keyboard), "A<115>");
    keyboard.Type("\x1b");
    EXPECT_EQ(keyboard.Take().Event.KeyEvent.uChar.AsciiChar, '\x1b');
    keyboard.Type("\x1b[1;");
    EXPECT_EQ(keyboard.Take().Event.KeyEvent.wVirtualKeyCode, CConsoleKeys::kOther);
}

TEST(ConsoleKeys, TheTerminalsOwnSequencesAreKnown) {
    // Of the system's basic set; like no other.
    EXPECT_EQ(KeysIn("\x1b[224z\x1b[216z\x1bOP", "sun"), "<112><33><112>");

    CConsoleKeys table;
    EXPECT_TRUE(table.Add("\x1b[P", VK_F1, 0)); // another meaning takes the place of the first
    EXPECT_TRUE(table.Add("\x1b[P", VK_DELETE, 0));
    const auto match = table.Find(reinterpret_cast<const std::uint8_t*>("\x1b[Px"), 4, false);
    EXPECT_EQ(match.virtualKey, VK_DELETE);
    EXPECT_EQ(match.length, 3);
}

TEST(ConsoleKeys, TheTableRefusesWhatIsNoSequence) {
    auto keys = std::make_unique<CConsoleKeys>();
    for (const char* bytes : {"\x7F", "\x1b", "\x1b\x1bO", "\x1b[234567890123456"})
        EXPECT_FALSE(keys->Add(bytes, VK_HOME, 0)) << bytes;
    EXPECT_TRUE(keys->Add("\x1b[23456789012345", VK_HOME, 0));
    AddKnownKeys(*keys);
    EXPECT_TRUE(keys->Add("\x1b[zyxwvutsrqponm", VK_HOME, 0)) << "the table is full";
}

TEST(ConsoleInput, EventsComeBeforeKeysAndTheEndStays) {
    Keyboard keyboard(nullptr);
    keyboard.Type("a");
    keyboard.input->AddEvent(WINDOW_BUFFER_SIZE_EVENT);
    keyboard.input->AddEvent(MENU_EVENT);
    EXPECT_EQ(keyboard.Take().EventType, MENU_EVENT);
    EXPECT_EQ(keyboard.Take().EventType, WINDOW_BUFFER_SIZE_EVENT);
    EXPECT_EQ(keyboard.Take().Event.KeyEvent.uChar.AsciiChar, 'a');
    keyboard.pipe.writer.Reset();
    for (int time = 0; time < 3; ++time) {
        EXPECT_EQ(keyboard.Take().EventType, 0) << "the end";
        if (time == 1)
            keyboard.input->Use(-1, nullptr);
    }
}
