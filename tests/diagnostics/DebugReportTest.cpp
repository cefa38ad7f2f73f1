#include "diagnostics/DebugReport.h"

#include "platform/Error.h"
#include "tests/diagnostics/ReportLog.h"

#include <gtest/gtest.h>

#include <algorithm>

#define EXPANDS_TO_ZERO 0

namespace {

using Texts = std::vector<std::string>;

std::string Block(const char* title, int line, const char* file, const char* expression) {
    return std::string(title) + "\n\tLine: " + std::to_string(line) + "\n\tFile: " + file +
           "\n\tExp: " + expression + "\n";
}

TEST(DebugReport, WritesOneLineAndLeavesTheLastErrorAlone) {
    CReportLog log;
    SetLastError(1234);
    DebugReport("Class::Operation() - \"%s\" - %ld %#08lx", "text", 5L, 0x80000048UL);
    EXPECT_EQ(GetLastError(), 1234u);
    EXPECT_EQ(log.Texts(), Texts{"Class::Operation() - \"text\" - 5 0x80000048\n"});
}

TEST(DebugReport, CutsLongTextsBeforeTheLineEnd) {
    CReportLog log;
    for (const std::size_t length : {509u, 510u, 511u, 5000u}) {
        DebugReport("%s", std::string(length, 'x').c_str());
        const std::string expected = std::string(std::min<std::size_t>(length, 510), 'x') + '\n';
        EXPECT_EQ(log.Take(), Texts{expected}) << length;
    }
}

TEST(DebugChecks, EvaluateOnceReportAndGoOn) {
    CReportLog log;
    int evaluations = 0;
    DEBUG_VERIFY(++evaluations);
    DEBUG_ASSERT(evaluations == 1);
    EXPECT_EQ(log.Take(), Texts{});

    const int line = __LINE__ + 1;
    DEBUG_VERIFY(++evaluations == 3);
    DEBUG_ASSERT(evaluations && EXPANDS_TO_ZERO);
    EXPECT_EQ(evaluations, 2);
    const Texts expected = {
        Block("Verify Failed!", line, "DebugReportTest", "++evaluations == 3"),
        Block("Assert!", line + 1, "DebugReportTest", "evaluations && EXPANDS_TO_ZERO"),
    };
    EXPECT_EQ(log.Take(), expected);
}

struct SComponent {
    static constexpr const char* kReportFile = "Component";
    static void Fail() { DEBUG_ASSERT(false); }
};

TEST(DebugChecks, AClassMayNameItsFile) {
    CReportLog log;
    SComponent::Fail();
    ASSERT_EQ(log.Texts().size(), 1u);
    EXPECT_NE(log.Texts()[0].find("\n\tFile: Component\n\tExp: false\n"), std::string::npos);
}

} // namespace
