// Sounds are played by programs that tests put in the players' place: they tell what they were
// given.
#include "platform/Error.h"
#include "platform/Notification.h"
#include "tests/support/Pipe.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

// Tells its arguments, its streams, what else is open, its signals, its session and terminal.
constexpr char kPlayer[] = R"sh(#!/bin/sh
PATH=/usr/bin:/bin
while read -r line; do
    case $line in SigBlk*|SigIgn*) signals="$signals $line" ;; esac
done </proc/$$/status # at once: with its first child the shell opens all signals
streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)
held=$(readlink /proc/$$/fd/* | grep 'held open')
session=$(cut -d' ' -f6,7 /proc/$$/stat)
[ "$session" = "$$ 0" ] && session='its own session, no terminal'
echo "$0 $*|"$streams"|$held|$signals|$session" >"$TOLD"
)sh";

class SoundTest : public ::testing::Test {
  protected:
    SoundTest() {
        mkfifo(told.c_str(), 0600);
        reader.open(told, std::ios::in | std::ios::out); // both: opening does not wait for players
        setenv("TOLD", told.c_str(), 1);
        setenv("PATH", (folder.GetPath("none") + ":" + folder.GetPath("")).c_str(), 1);
        EXPECT_EQ(chdir(folder.GetPath("").c_str()), 0);
    }
    ~SoundTest() override { setenv("PATH", path.c_str(), 1); }

    void MakePlayer(const char* name, const char* program = kPlayer, mode_t mode = 0700) const {
        chmod(folder.Write(name, program).c_str(), mode);
    }
    // Plays and returns what a player tells.
    std::string Play(const std::string& file) {
        std::string line;
        EXPECT_TRUE(sndPlaySoundA(file.c_str(), SND_ASYNC) && std::getline(reader, line));
        return line;
    }
    // Plays with this player in this way.
    void ExpectPlayer(const std::string& commandLine, const std::string& file) {
        const std::string line = Play(file);
        EXPECT_EQ(line.substr(0, line.find('|')), folder.GetPath('/' + commandLine));
    }
    // Waiting for any child finds none: none that runs, none that has ended.
    static bool HasChild() { return waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD; }

    CTempFolder folder;
    const std::string told = folder.GetPath("told");
    const std::string path = std::getenv("PATH");
    const std::string sound = folder.Write("a sound.wav", "");
    std::fstream reader;
};

} // namespace

TEST_F(SoundTest, StartsAPlayerThatIsOnItsOwn) {
    MakePlayer("aplay");
    const CDescriptor held(open(folder.Write("held open", "").c_str(), O_RDONLY)); // not on exec
    sigset_t mask;
    sigset_t before;
    sigfillset(&mask);
    pthread_sigmask(SIG_BLOCK, &mask, &before);
    const auto handler = std::signal(SIGINT, SIG_IGN);
    const std::string line = Play(sound);
    std::signal(SIGINT, handler);
    pthread_sigmask(SIG_SETMASK, &before, &mask);
    EXPECT_TRUE(sigismember(&mask, SIGTERM)) << "the caller's own mask is as it was";
    EXPECT_EQ(line, folder.GetPath("/aplay") + " -q " + sound +
                        "|/dev/null /dev/null /dev/null|| SigBlk:\t0000000000000000"
                        " SigIgn:\t0000000000000000|its own session, no terminal");
    EXPECT_FALSE(HasChild());
}

// A file that lies where the process happens to be is no player.
TEST_F(SoundTest, TheBestPlayerThatCanBeStartedIsTaken) {
    const auto expectFailure = [](DWORD error, const char* file) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(sndPlaySoundA(file, SND_ASYNC));
        EXPECT_EQ(GetLastError(), error);
    };
    expectFailure(ERROR_FILE_NOT_FOUND, "/no/such/sound");
    expectFailure(ERROR_FILE_NOT_FOUND, "/dev/null");
    expectFailure(ERROR_MOD_NOT_FOUND, sound.c_str());
    MakePlayer("pw-play", kPlayer, 0600);
    MakePlayer("paplay");
    MakePlayer("aplay");
    ExpectPlayer("paplay " + sound, sound);
    MakePlayer("pw-play");
    folder.Write("--help", "");
    ExpectPlayer("pw-play ./--help", "--help");
    MakePlayer("pw-play", "#!/no/such/shell");
    ExpectPlayer("paplay " + sound, sound);
    for (const char* const folders : {"", ".", ":/no/such/folder:"}) {
        setenv("PATH", folders, 1);
        expectFailure(ERROR_MOD_NOT_FOUND, sound.c_str());
    }
    EXPECT_FALSE(HasChild());
}
