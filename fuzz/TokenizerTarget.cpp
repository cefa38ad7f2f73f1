// Fuzzes the tokenizer, the reader on every stream that it makes, and the check.
#include "common/UniqueHandle.h"
#include "fuzz/FuzzPlatform.h"
#include "script/ScriptCheck.h"
#include "script/TokenReader.h"
#include "script/Tokenizer.h"

namespace {

// The reader counts the lines anew for each.
constexpr DWORD kCodesBetweenLines = 256;

bool OpensBracket(BYTE code) {
    return code == '{' || code == '(';
}

// Every code once, every text skipped: the walk only goes forward and ends where the stream does.
void Walk(CTokenReader& reader, const CNameTable& names) {
    DWORD line = 0;
    for (DWORD count = 0;; ++count) {
        const DWORD position = reader.Position();
        const BYTE code = reader.NextToken();
        if (code == TOKEN_EOF)
            break;
        fuzz::Require(reader.Position() > position && reader.Position() <= reader.End());
        if (OpensBracket(code) && reader.BehindClosing() != 0)
            fuzz::Require(reader.BehindClosing() > reader.Position() &&
                          reader.BehindClosing() <= reader.End());
        if (HasInlineText(code)) {
            fuzz::Require(code != TOKEN_NAME || reader.Name() < names.Count());
            reader.SkipText();
            fuzz::Require(reader.Position() > position && reader.Position() <= reader.End());
        }
        if (count % kCodesBetweenLines != 0)
            continue;
        const DWORD formerLine = line;
        line = reader.CurrentLine();
        fuzz::Require(line >= formerLine || line == 0);
    }
    fuzz::Require(reader.Position() == reader.End());
    fuzz::Require(reader.NextToken() == TOKEN_EOF);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const BYTE* data, std::size_t size) {
    fuzz::BeginRun({data, size});
    CScriptArea area;
    CScriptReport report(nullptr);
    CNameTable names;
    CTokenReader reader(names, report);
    fuzz::Require(area.Reserve());
    DWORD end = 0;
    {
        const CUniqueHandle file(fuzz::OpenScript());
        CTokenizer tokenizer(file, area, report);
        if (tokenizer.Tokenize()) {
            end = tokenizer.End();
            fuzz::Require(end % 2 == 0 && end < area.Limit());
        }
        fuzz::Require((end == 0) == report.HasError());
    }
    if (end != 0) {
        reader.Prepare(area.Bytes(), CScriptArea::kStart, end);
        Walk(reader, names);
    }
    const CScriptCheck check({reinterpret_cast<const char*>(data), size});
    // A small one that does not load has findings.
    fuzz::Require(end != 0 || size > CScriptArea::kCapacity / 8 || !check.Findings().empty());
    fuzz::EndRun();
    return 0;
}
