// Command files, captures, logs and scripts that cannot be used.
#include "tests/endtoend/SessionTest.h"

#include <filesystem>
#include <sys/file.h>

namespace fs = std::filesystem;

using CFilesTest = CSessionTest;

// Nothing is sent then: no answer is asked for that is not kept. No file is made or changed.
TEST_F(CFilesTest, RefusesFilesThatCannotBeUsed) {
    const std::string script = m_folder.Write("script", "FUNCTION main()\r\nENDFUNCTION\r\n");
    const std::string commands = m_folder.Write("commands", "ATI\n");
    const std::string kept = m_folder.Write("kept", "kept content");
    const std::string missing = m_folder.GetPath("missing");
    const std::string folder = m_folder.GetPath("folder");
    const std::string link = m_folder.GetPath("link");
    fs::create_directory(folder);
    fs::create_symlink(commands, link);
    const CDescriptor other(open(kept.c_str(), O_RDONLY | O_CLOEXEC));
    ASSERT_EQ(flock(other.Get(), LOCK_EX), 0);
    std::vector<std::pair<Words, std::string>> rows = {
        // A missing command file is found out before the capture file is made.
        {{"-A:" + missing, "-O:" + missing}, "open " + missing + ": there is no such file"},
        {{"-A:" + folder, "-O:" + missing}, "open " + folder + ": it is a directory"},
        {{"-A:" + commands, "-O:" + folder}, "create " + folder + ": it is a directory"},
        {{"-A:" + commands, "-O:" + missing + "/x"},
         "create " + missing + "/x: there is no such folder"},
        {{"-A:" + commands, "-O:" + link}, "create " + link + ": it is the command file itself"},
        {{"-A:" + commands, "-O:" + kept}, "create " + kept + ": another program has it open"},
        {{"-O:" + folder}, "create " + folder + ": it is a directory"},
        {{"-O:" + script, "-S:" + script}, "create " + script + ": it is the script file itself"},
        {{"-O:" + link, "-A:" + commands, "-S:" + script},
         "create " + link + ": it is the command file itself"},
        {{"-A:" + commands, "-O:/dev/full"}, "write /dev/full: the disk is full"},
        {{"-O:" + script, "-S:" + missing}, missing}, // without a script the last log stays
    };
    const std::string secret = m_folder.Write("secret", "ATI\n");
    fs::permissions(secret, fs::perms::none);
    if (geteuid() != 0)
        rows.push_back({{"-A:" + secret}, "open " + secret + ": access is denied"});
    for (auto& [options, told] : rows) {
        options.insert(options.begin(), m_device.GetPath());
        const Outcome outcome = Run(options);
        EXPECT_NE(outcome.error.find(told), std::string::npos) << told << '\n' << outcome.error;
        EXPECT_EQ(outcome.exit, 0) << told;
        EXPECT_EQ(m_device.GetReceived(), "") << told;
    }
    EXPECT_FALSE(fs::exists(missing));
    EXPECT_EQ(ReadWholeFile(commands) + ReadWholeFile(kept), "ATI\nkept content");
    EXPECT_EQ(ReadWholeFile(script), "FUNCTION main()\r\nENDFUNCTION\r\n");
}
