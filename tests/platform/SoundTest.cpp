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
#include <filesystem>
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
echo "$0 $*|"$streams"|$held|$signals|$(cut -d' ' -f6,7 /proc/$$/stat)" >"$TOLD"
)sh";

class SoundTest : public ::testing::Test {
  protected:
    SoundTest() {
        mkfifo(told.c_str(), 0600);
        reader.open(told, std::ios::in | std::ios::out); // both: opening does not wait for players
        setenv("TOLD", told.c_str(), 1);
        setenv("PATH", (folder.GetPath("none") + ":" + folder.GetPath("")).c_str(), 1);
        std::filesystem::current_path(folder.GetPath(""));
    }
    ~SoundTest() override {
        setenv("PATH", path.c_str(), 1);
        std::filesystem::current_path(present);
    }

    void MakePlayer(const char* name, mode_t mode = 0700) const {
        chmod(folder.Write(name, kPlayer).c_str(), mode);
    }
    // Plays and returns what a player tells.
    std::string Play(const std::string& file) {
        std::string line = "nothing";
        if (sndPlaySoundA(file.c_str(), SND_ASYNC))
            std::getline(reader, line);
        return line;
    }
    // The command line of the one that plays.
    std::string PlayerOf(const std::string& file) {
        const std::string line = Play(file);
        return line.substr(folder.GetPath("/").size(), line.find('|') - folder.GetPath("/").size());
    }
    // Waiting for any child finds none: none that runs, none that has ended.
    static bool HasChild() { return waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD; }

    CTempFolder folder;
    const std::string told = folder.GetPath("told");
    const std::string path = std::getenv("PATH");
    const std::filesystem::path present = std::filesystem::current_path();
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
    const std::string session = line.substr(line.rfind('|') + 1);
    EXPECT_EQ(line, folder.GetPath("/aplay") + " -q " + sound +
                        "|/dev/null /dev/null /dev/null|| SigBlk:\t0000000000000000"
                        " SigIgn:\t0000000000000000|" +
                        session);
    EXPECT_NE(session, std::to_string(getsid(0)) + " 0");
    EXPECT_TRUE(session.ends_with(" 0")) << "a terminal: " << session;
    EXPECT_FALSE(HasChild());
}

// A file that lies where the process happens to be is no player.
TEST_F(SoundTest, TheBestPlayerThatCanBeStartedIsTaken) {
    const auto expectFailure = [](DWORD error, const char* file) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(sndPlaySoundA(file, SND_ASYNC));
        EXPECT_EQ(GetLastError(), error);
    };
    expectFailure(ERROR_INVALID_PARAMETER, nullptr);
    expectFailure(ERROR_FILE_NOT_FOUND, "/no/such/sound");
    expectFailure(ERROR_FILE_NOT_FOUND, "/dev/null");
    expectFailure(ERROR_MOD_NOT_FOUND, sound.c_str());
    MakePlayer("pw-play", 0600);
    MakePlayer("paplay");
    MakePlayer("aplay");
    EXPECT_EQ(PlayerOf(sound), "paplay " + sound);
    MakePlayer("pw-play");
    folder.Write("--help", "");
    EXPECT_EQ(PlayerOf("--help"), "pw-play ./--help");
    chmod(folder.Write("pw-play", "#!/no/such/shell").c_str(), 0700);
    EXPECT_EQ(PlayerOf(sound), "paplay " + sound);
    for (const char* const folders : {"", ".", ":/no/such/folder:"}) {
        setenv("PATH", folders, 1);
        expectFailure(ERROR_MOD_NOT_FOUND, sound.c_str());
    }
    EXPECT_FALSE(HasChild());
}
