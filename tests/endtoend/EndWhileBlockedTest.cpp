// Wherever the program waits, for a device that takes nothing above all, it ends in order when it
// is asked to, and soon.
#include "tests/endtoend/SessionTest.h"

#include <csignal>
#include <sys/stat.h>

namespace {

constexpr char kFifo[] = ""; // with nobody at its other end

struct Place {
    const char* name;
    char mode = 0;            // 'S' or 'A': it is a script's or a command file's session
    std::string file = kFifo; // what the script does, or the commands
    bool takes = false;       // the device takes what it gets
    bool isLogged = false;    // -O is a FIFO
    std::string_view typed = {};
    bool isSeen = true; // the terminal takes what it gets
};

const std::string kMuch(300000, 'm');

const Place kPlaces[] = {
    {"ScriptSends", 'S',
     "WHILE 1\r\nSendString(\"0123456789012345678901234567890123456789\")\r\nWEND"},
    {"ScriptSendsFile", 'S', "SendFile(\"much\")"},
    {"ScriptAwaitsAnswer", 'S', "SetTimeout(60000)\r\nSendCommand(\"AT\\r\")", true},
    {"ScriptAwaitsText", 'S', "WaitForString(\"text\", 60000)"},
    {"ScriptWaits", 'S', "Wait(60000)"},
    {"ScriptComputes", 'S', "WHILE 1\r\nWEND"},
    {"ScriptShowsBoxes", 'S',
     "MessageBox(\"box\", \"\")\r\nWait(300)\r\nWHILE 1\r\nMessageBox(\"a text that soon fills a "
     "pipe that nobody reads, when it is not in a "
     "box but on standard error, over and over\", \"\")\r\nWEND"},
    {"ScriptIsAwaited", 'S'},
    {"ScriptIsLogged", 'S', "SendFile(\"much\")", true, true},
    {"CommandIsSent", 'A', kMuch + "\nlast\n"},
    {"CommandAwaitsAnswer", 'A', "AT\nAT\n", true},
    {"CommandsAreAwaited", 'A'},
    {"CommandIsCaptured", 'A', kMuch + "\nlast\n", true, true},
    {"Menu", 0, kFifo, false, false, kF5},
    {"TypedText", 0, kFifo, false, false, kMuch},
    {"TypedTextIsLogged", 0, kFifo, true, true, kMuch},
    {"TerminalTakesNothing", 0, kFifo, false, false, {}, false},
};

} // namespace

class CEndWhileBlockedTest : public CSessionTest, public ::testing::WithParamInterface<Place> {
  protected:
    Words MakeArguments() {
        const Place& place = GetParam();
        const std::string fifo = m_folder.GetPath("fifo");
        mkfifo(fifo.c_str(), 0600);
        std::string file = place.file;
        if (const std::size_t much = file.find("\"much\""); much != file.npos)
            file.replace(much + 1, 4, m_folder.Write("much", kMuch));
        if (place.mode == 'S')
            file = "FUNCTION main()\r\n" + file + "\r\nENDFUNCTION\r\n";
        const std::string path = place.file == kFifo ? fifo : m_folder.Write("file", file);
        Words arguments = {m_device.GetPath()};
        if (place.mode)
            arguments.push_back(std::string{'-', place.mode, ':'} + path);
        if (place.isLogged)
            arguments.push_back("-O:" + fifo);
        return arguments;
    }

    // Starts the program and lets it get to its place.
    void StartAndBlock(int stream = -1, int error = -1) {
        m_device = CDevice();
        m_device.SetReadLimit(GetParam().takes ? 65536 : 0);
        const std::size_t before = m_terminal.GetOutput().size();
        m_terminal.SetReading(true);
        StartWith(MakeArguments(), stream, stream, error);
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
        EXPECT_TRUE(EndsWith(GetParam().mode ? -signal : 0, kSoon));
        EXPECT_TRUE(m_device.GetLine().GetSettings() == m_deviceBefore);
        EXPECT_TRUE(GivesTerminalBack());
    }
};

TEST_P(CEndWhileBlockedTest, EndsInOrder) {
    StartAndBlock();
    ExpectEnd(SIGHUP);
    if (!GetParam().mode)
        return;
    // The first only gives the terminal back, if there is one.
    StartAndBlock();
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
