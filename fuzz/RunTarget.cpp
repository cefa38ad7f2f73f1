// Fuzzes a whole run of a script on a device that answers from the same input.
#include "fuzz/FuzzPlatform.h"
#include "platform/Message.h"
#include "tests/script/ScriptRun.h"

#include <algorithm>

namespace {

// Enough for every statement of a small script to run many times.
constexpr DWORD kStatements = 2000;

// A text up to this length is taken from the input as it is; a longer one, in steps of a kilobyte
// and in one step to the longest that there is, repeats the bytes that are left. A run that asks
// for long ones again and again tries nothing new.
constexpr std::size_t kPlain = 190;
constexpr std::size_t kStep = 1024;
constexpr std::size_t kMostRepeated = CFinalResult::kMaxResponse + 256 * kStep;

// What the device has to say. Of each piece the first byte tells the kind, the second one how long
// the text is.
std::deque<std::string> InputsOf(std::span<const BYTE> bytes) {
    constexpr LPCSTR kKinds[] = {"answer 0 ", "answer 1 ", "device< ", "gone"};
    std::deque<std::string> inputs;
    for (std::size_t repeated = 0; bytes.size() >= 2;) {
        std::string& input = inputs.emplace_back(kKinds[bytes[0] % std::size(kKinds)]);
        const std::size_t mark = bytes[1];
        bytes = bytes.subspan(2);
        std::size_t length = std::min(mark, bytes.size());
        const std::string_view rest(reinterpret_cast<LPCSTR>(bytes.data()), bytes.size());
        if (mark > kPlain && !bytes.empty()) {
            length = mark == 0xFF ? CFinalResult::kMaxResponse : (mark - kPlain) * kStep;
            repeated += length = std::min(length, kMostRepeated - repeated);
            while (input.size() < length)
                input.append(rest.substr(0, length - input.size()));
            continue;
        }
        input.append(rest.substr(0, length));
        bytes = bytes.subspan(length);
    }
    return inputs;
}

} // namespace

// Nobody sends a script messages.
BOOL PeekMessageA(MSG*, HWND, UINT, UINT, UINT) {
    return FALSE;
}

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    const std::span<const BYTE> input(data, size);
    fuzz::BeginRun(input);
    CScriptRun run(InputsOf(fuzz::DeviceBytesOf(input)));
    run.Engine().m_strApn = "internet";
    run.Engine().SetStatementBudget(kStatements);
    const DWORD result = run.Engine().Run(fuzz::kScriptPath, &run);
    fuzz::Require(result == 0 || result == ERR_INVALID_FILE);
    fuzz::Require(run.CountReports() <= 1);
    return 0;
}
