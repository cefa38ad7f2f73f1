// Fuzzes the tokenizer, the reader on every stream that it makes, and the check.
#include "common/UniqueHandle.h"
#include "fuzz/FuzzPlatform.h"
#include "platform/File.h"
#include "script/ScriptCheck.h"
#include "script/TokenReader.h"
#include "script/Tokenizer.h"

namespace {

// The reader counts the lines anew for each.
constexpr DWORD kCodesBetweenLines = 256;

// Every code once, every text skipped: the walk only goes forward and ends where the stream does.
void Walk(CTokenReader& reader, const CNameTable& names) {
    const auto requireAhead = [&](DWORD target, DWORD position) {
        fuzz::Require(target > position && target <= reader.End());
    };
    for (DWORD count = 0;; ++count) {
        const DWORD position = reader.Position();
        const BYTE code = reader.NextToken();
        if (code == TOKEN_EOF)
            break;
        requireAhead(reader.Position(), position);
        if ((code == '{' || code == '(') && reader.BehindClosing() != 0)
            requireAhead(reader.BehindClosing(), reader.Position());
        fuzz::Require(code != TOKEN_NAME || reader.Name() < names.Count());
        if (HasInlineText(code))
            reader.SkipText();
        requireAhead(reader.Position(), position);
        if (count % kCodesBetweenLines == 0)
            static_cast<void>(reader.CurrentLine());
    }
    fuzz::Require(reader.Position() == reader.End() && reader.NextToken() == TOKEN_EOF);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    fuzz::BeginRun({data, size});
    CScriptArea area;
    CScriptReport report(nullptr);
    CNameTable names;
    fuzz::Require(area.Reserve());
    const CUniqueHandle file(CreateFileA(fuzz::kScriptPath, 0, 0, nullptr, 0, 0, nullptr));
    CTokenizer tokenizer(file, area, report);
    const bool isTokenized = tokenizer.Tokenize();
    fuzz::Require(isTokenized != report.HasError());
    if (isTokenized) {
        const DWORD end = tokenizer.End();
        fuzz::Require(end % 2 == 0 && end < area.Limit());
        CTokenReader reader(names, report);
        reader.Prepare(area.Bytes(), CScriptArea::kStart, end);
        Walk(reader, names);
    }
    const CScriptCheck check({reinterpret_cast<const char*>(data), size});
    // A small one that does not load has findings.
    fuzz::Require(isTokenized || size > CScriptArea::kCapacity / 8 || !check.Findings().empty());
    return 0;
}
