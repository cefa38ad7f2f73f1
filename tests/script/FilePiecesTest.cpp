#include "script/FilePieces.h"
#include "tests/support/TempFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

TEST(FilePieces, EndBehindALineFeedOrAt255Bytes) {
    const CTempFolder folder;
    const std::string line(255, 'x');
    std::string content = "a\r\n\nb" + line + '\n' + line + line + '\n';
    content += std::string(5000, '\0') + "\nend";
    std::vector<std::string> expected = {"a\r\n", "\n", 'b' + line.substr(1), "x\n", line,
                                         line,    "\n"};
    expected.insert(expected.end(), 19, std::string(255, '\0'));
    expected.insert(expected.end(), {std::string(155, '\0') + '\n', "end"});

    CFilePieces file;
    ASSERT_TRUE(file.Open(folder.Write("pieces", content)));
    std::vector<std::string> pieces;
    std::string piece;
    while (file.Next(piece))
        pieces.push_back(piece);
    EXPECT_EQ(pieces, expected);
    EXPECT_FALSE(file.HasFailed());

    EXPECT_FALSE(file.Open(folder.GetPath("missing")));
    EXPECT_FALSE(file.Open(folder.GetPath("")));
    EXPECT_FALSE(file.Next(piece));
}

} // namespace
