// Wherever the program waits, for a device that takes nothing above all, it ends in order when it
// is asked to, and soon.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <sys/stat.h>

namespace {

struct Place {
    const char* name;
    const char* script;   // what its main function does; null: no script
    const char* commands; // the command file; null: none
    char fifo;            // the switch that names a FIFO with nobody at its other end; 0: none
    bool takes;           // the device takes what it gets
    std::string_view typed = {};
    bool isSeen = true; // the terminal takes what it gets
};

const std::string kMuch(300000, 'm');

void PrintTo(const Place& place, std::ostream* stream) {
    *stream << place.name;
}

const Place kPlaces[] = {
    {"ScriptSends", "WHILE 1\r\nSendString(\"0123456789012345678901234567890123456789\")\r\nWEND",
     nullptr, 0, false},
    {"ScriptSendsFile", "SendFile(\"much\")", nullptr, 0, false},
    {"ScriptAwaitsAnswer", "SetTimeout(60000)\r\nSendCommand(\"AT\\r\")", nullptr, 0, true},
    {"ScriptAwaitsText", "WaitForString(\"text\", 60000)", nullptr, 0, false},
    {"ScriptWaits", "Wait(60000)", nullptr, 0, false},
    {"ScriptComputes", "WHILE 1\r\nWEND", nullptr, 0, false},
    {"ScriptShowsBoxes",
     "MessageBox(\"box\", \"\")\r\nWait(300)\r\nWHILE 1\r\nMessageBox(\"a text that soon fills a "
     "pipe that nobody reads, when it is not in a "
     "box but on standard error, over and over\", \"\")\r\nWEND",
     nullptr, 0, false},
    {"ScriptIsAwaited", nullptr, nullptr, 'S', false},
    {"ScriptIsLogged", "SendFile(\"much\")", nullptr, 'O', true},
    {"CommandIsSent", nullptr, "much", 0, false},
    {"CommandAwaitsAnswer", nullptr, "AT\nAT\n", 0, true},
    {"CommandsAreAwaited", nullptr, nullptr, 'A', false},
    {"CommandIsCaptured", nullptr, "much", 'O', true},
    {"Menu", nullptr, nullptr, 0, false, kF5},
    {"TypedText", nullptr, nullptr, 0, false, kMuch},
    {"TypedTextIsLogged", nullptr, nullptr, 'O', true, kMuch},
    {"TerminalTakesNothing", nullptr, nullptr, 0, false, {}, false},
};

} // namespace

class CEndWhileBlockedTest : public CSessionTest, public ::testing::WithParamInterface<Place> {
  protected:
    // The graces of the program together are below three seconds; what it waited for without them
    // is ten at least.
    static constexpr std::chrono::seconds kSoon{6};

    bool IsRun() const {
        const Place& place = GetParam();
        return place.script || place.commands || place.fifo == 'S' || place.fifo == 'A';
    }

    std::vector<std::string> MakeArguments() {
        const Place& place = GetParam();
        const std::string much = m_folder.Write("much", kMuch + "\nlast\n");
        std::vector<std::string> arguments = {m_device.GetPath()};
        if (place.script) {
            std::string text =
                std::string("FUNCTION main()\r\n") + place.script + "\r\nENDFUNCTION\r\n";
            if (const std::size_t name = text.find("\"much"); name != std::string::npos)
                text.replace(name + 1, 4, much);
            arguments.push_back("-S:" + m_folder.Write("script", text));
        }
        if (place.commands)
            arguments.push_back("-A:" + (std::string(place.commands) == "much"
                                             ? much
                                             : m_folder.Write("commands", place.commands)));
        if (place.fifo) {
            const std::string fifo = m_folder.GetPath("fifo");
            mkfifo(fifo.c_str(), 0600);
            arguments.push_back(std::string("-") + place.fifo + ':' + fifo);
        }
        return arguments;
    }

    // Starts the program and lets it get to its place.
    void StartAndBlock(int stream, int error) {
        m_device = CDevice();
        m_device.SetReadLimit(GetParam().takes ? 65536 : 0);
        const std::size_t before = m_terminal.GetOutput().size();
        m_terminal.SetReading(true);
        StartWith(stream, stream, error, MakeArguments());
        if (stream < 0) {
            ASSERT_TRUE(Fulfils("the start", [&] {
                return m_terminal.GetOutput().find("19200 baud", before) != std::string::npos;
            }));
        }
        Type(GetParam().typed);
        m_terminal.SetReading(GetParam().isSeen);
        if (!GetParam().isSeen)
            m_device.SendEndlessly("unseen ");
        m_pump.RunFor(std::chrono::milliseconds(500));
        ASSERT_FALSE(m_program->HasEnded());
    }

    void ExpectEnd(int signal) {
        m_program->Kill(signal);
        EXPECT_TRUE(m_pump.RunUntil([this] { return m_program->HasEnded(); }, kSoon));
        EXPECT_TRUE(EndsWith(IsRun() ? -signal : 0));
        EXPECT_TRUE(m_device.GetLine().GetSettings() == m_deviceBefore);
        EXPECT_TRUE(GivesTerminalBack());
    }
};

TEST_P(CEndWhileBlockedTest, EndsInOrder) {
    StartAndBlock(-1, -1);
    ExpectEnd(SIGHUP);
    if (!IsRun())
        return;
    // The first only gives the terminal back, if there is one.
    StartAndBlock(-1, -1);
    m_program->Kill(SIGQUIT);
    ASSERT_TRUE(GivesTerminalBack());
    m_pump.RunFor(std::chrono::milliseconds(200));
    ExpectEnd(SIGTERM);
    const CDescriptor null(open("/dev/null", O_RDWR | O_CLOEXEC));
    const Pipe unread;
    StartAndBlock(null.Get(), unread.writer.Get());
    ExpectEnd(SIGQUIT);
}

INSTANTIATE_TEST_SUITE_P(Places, CEndWhileBlockedTest, ::testing::ValuesIn(kPlaces),
                         [](const auto& place) { return std::string(place.param.name); });
