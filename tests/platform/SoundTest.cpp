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
#include <poll.h>
#include <sstream>
#include <sys/stat.h>
#include <sys/wait.h>

namespace {

// Tells its arguments, its streams and what else is open, its signals and its session.
constexpr char PLAYER[] = R"(#!/bin/sh
PATH=/usr/bin:/bin
streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)
{
    echo "$0" "$@"
    echo "$streams"
    readlink /proc/$$/fd/* | grep 'held open'
    grep -E '^Sig(Blk|Ign):' /proc/self/status
    cut -d' ' -f6,7 /proc/$$/stat
    echo end
} >TOLD
)";

class SoundTest : public ::testing::Test {
  protected:
    SoundTest() {
        mkfifo(told.c_str(), 0600);
        reader.Reset(open(told.c_str(), O_RDWR | O_CLOEXEC));
        setenv("PATH", (folder.GetPath("none") + ":" + folder.GetPath("")).c_str(), 1);
        sound = folder.Write("a sound.wav", "");
    }
    ~SoundTest() override { setenv("PATH", path.c_str(), 1); }

    void MakePlayer(const char* name, mode_t mode = 0700) const {
        std::string script = PLAYER;
        script.replace(script.find("TOLD"), 4, told);
        chmod(folder.Write(name, script).c_str(), mode);
    }
    // The lines that a player tells, until its end.
    std::vector<std::string> Told() const {
        constexpr int STUCK_MILLISECONDS = 45'000;
        std::string all;
        pollfd polled = {reader.Get(), POLLIN, 0};
        while (!all.ends_with("\nend\n") && poll(&polled, 1, STUCK_MILLISECONDS) > 0) {
            char bytes[4096];
            const ssize_t count = read(reader.Get(), bytes, sizeof bytes);
            all.append(bytes, count > 0 ? static_cast<std::size_t>(count) : 0);
        }
        std::istringstream stream(all);
        std::vector<std::string> lines;
        for (std::string line; std::getline(stream, line);)
            lines.push_back(line);
        return lines;
    }
    // Waiting for any child finds none: none that runs, none that has ended.
    static bool HasChild() { return waitpid(-1, nullptr, WNOHANG) != -1 || errno != ECHILD; }

    CTempFolder folder;
    const std::string told = folder.GetPath("told");
    const std::string path = std::getenv("PATH");
    std::string sound;
    CDescriptor reader;
};

} // namespace

TEST_F(SoundTest, StartsAPlayerThatIsOnItsOwn) {
    MakePlayer("aplay");
    const CDescriptor held(open(folder.Write("held open", "").c_str(), O_RDONLY)); // not on exec
    sigset_t blocked;
    sigset_t before;
    sigfillset(&blocked);
    pthread_sigmask(SIG_BLOCK, &blocked, &before);
    const auto handler = std::signal(SIGINT, SIG_IGN);
    EXPECT_TRUE(sndPlaySoundA(sound.c_str(), SND_ASYNC));
    std::signal(SIGINT, handler);
    sigset_t after;
    pthread_sigmask(SIG_SETMASK, &before, &after);
    EXPECT_TRUE(sigismember(&after, SIGTERM)) << "the caller's own mask is as it was";
    EXPECT_FALSE(HasChild());

    const std::vector<std::string> lines = Told();
    ASSERT_EQ(lines.size(), 8U) << lines.back();
    EXPECT_EQ(lines[0], folder.GetPath("/aplay") + " -q " + sound);
    for (int stream = 1; stream <= 3; ++stream)
        EXPECT_EQ(lines[static_cast<std::size_t>(stream)], "/dev/null");
    EXPECT_EQ(lines[4], "SigBlk:\t0000000000000000");
    EXPECT_EQ(lines[5], "SigIgn:\t0000000000000000");
    EXPECT_NE(lines[6], std::to_string(getsid(0)) + " 0");
    EXPECT_TRUE(lines[6].ends_with(" 0")) << "a terminal: " << lines[6];
    EXPECT_FALSE(HasChild());
}

TEST_F(SoundTest, TheBestPlayerThatCanBeStartedIsTaken) {
    MakePlayer("pw-play", 0600);
    MakePlayer("paplay");
    MakePlayer("aplay");
    EXPECT_TRUE(sndPlaySoundA(sound.c_str(), SND_ASYNC));
    EXPECT_EQ(Told()[0], folder.GetPath("/paplay") + " " + sound);

    MakePlayer("pw-play");
    const std::filesystem::path present = std::filesystem::current_path();
    std::filesystem::current_path(folder.GetPath(""));
    folder.Write("--help", "");
    EXPECT_TRUE(sndPlaySoundA("--help", SND_ASYNC));
    std::filesystem::current_path(present);
    EXPECT_EQ(Told()[0], folder.GetPath("/pw-play") + " ./--help");

    chmod(folder.Write("pw-play", "#!/no/such/shell").c_str(), 0700);
    EXPECT_TRUE(sndPlaySoundA(sound.c_str(), SND_ASYNC));
    EXPECT_EQ(Told()[0], folder.GetPath("/paplay") + " " + sound);
    EXPECT_FALSE(HasChild());
}

TEST_F(SoundTest, TellsWhatIsMissing) {
    const struct {
        const char* sound;
        DWORD error;
    } failures[] = {{nullptr, ERROR_INVALID_PARAMETER},
                    {"/no/such/sound", ERROR_FILE_NOT_FOUND},
                    {"/dev/null", ERROR_FILE_NOT_FOUND},
                    {sound.c_str(), ERROR_MOD_NOT_FOUND}};
    for (const auto& failure : failures) {
        SetLastError(ERROR_SUCCESS);
        EXPECT_FALSE(sndPlaySoundA(failure.sound, SND_ASYNC));
        EXPECT_EQ(GetLastError(), failure.error);
    }
    // A file that lies where the process happens to be is no player.
    MakePlayer("aplay");
    const std::filesystem::path present = std::filesystem::current_path();
    std::filesystem::current_path(folder.GetPath(""));
    for (const char* const folders : {"", ".", ":/no/such/folder:"}) {
        setenv("PATH", folders, 1);
        EXPECT_FALSE(sndPlaySoundA(sound.c_str(), SND_ASYNC)) << folders;
    }
    std::filesystem::current_path(present);
    EXPECT_FALSE(HasChild());
}
