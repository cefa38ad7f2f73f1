// Fuzzes a whole run of a script on a device that answers from the same input.
#include "fuzz/FuzzModem.h"
#include "fuzz/FuzzPlatform.h"
#include "script/Script.h"

namespace {

// Enough for every statement of a small script to run many times.
constexpr DWORD kStatements = 2000;

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    const std::span<const BYTE> input(data, size);
    fuzz::BeginRun(input);
    {
        CFuzzModem modem(fuzz::DeviceBytesOf(input));
        CVScript script;
        script.m_strApn = "internet";
        script.SetStatementBudget(kStatements);
        const DWORD result = script.Run(fuzz::SCRIPT_PATH, &modem);
        fuzz::Require(result == 0 || result == ERR_INVALID_FILE);
        fuzz::Require(!script.IsDeviceGone() || modem.IsDeviceGone());
    }
    fuzz::EndRun();
    return 0;
}
