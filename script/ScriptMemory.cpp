// How: each kind of memory has a range of the address space of its own, far from the others, so
// that a location tells its kind and what is left behind it by arithmetic alone.
#include "script/ScriptMemory.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr DWORD kWordSize = 4;

} // namespace

CScriptMemory::Span CScriptMemory::FindElsewhere(DWORD location) const {
    const DWORD result = (location - kResultBase) / kResultStride;
    const DWORD inResult = (location - kResultBase) % kResultStride;
    if (location >= kResultBase && result < CResultBuffers::kBuffers &&
        inResult < CResultBuffers::kBufferSize) {
        CResultBuffers::Buffer& buffer = m_results[static_cast<EResultBuffer>(result)];
        return {reinterpret_cast<BYTE*>(buffer.data()) + inResult,
                static_cast<DWORD>(buffer.size()) - inResult, true};
    }

    const DWORD response = (location - kResponseBase) / kResponseStride;
    const DWORD inResponse = (location - kResponseBase) % kResponseStride;
    if (location < kResponseBase || response >= CResultBuffers::kResponses)
        return {};
    // The NUL behind it can be read as well.
    std::string& text = m_results[static_cast<EResponse>(response)];
    if (inResponse > text.size())
        return {};
    return {reinterpret_cast<BYTE*>(text.data()) + inResponse,
            static_cast<DWORD>(text.size()) + 1 - inResponse, false};
}

// The position of an array element; 0: none stands there.
DWORD CScriptMemory::FindElement(DWORD location) const {
    const DWORD position = AreaPosition(location);
    const bool isElement = position % 2 == 0 && position >= m_pStreamEnd &&
                           position + kWordSize <= CScriptArea::kCapacity &&
                           m_area.HomeAt(position) != 0;
    return isElement ? position : 0;
}

DWORD CScriptMemory::HomeOf(DWORD place) const {
    if (const DWORD symbol = FindVariable(place); symbol != 0)
        return m_symbols[symbol].home;
    const DWORD element = FindElement(place);
    const DWORD home = element == 0 ? 0 : m_area.HomeAt(element);
    return home == CScriptArea::kNoHome ? 0 : home;
}

void CScriptMemory::SetHome(DWORD place, DWORD home) {
    if (const DWORD symbol = FindVariable(place); symbol != 0)
        m_symbols[symbol].home = home;
    else if (const DWORD element = FindElement(place); element != 0)
        m_area.SetHome(element, home == 0 ? CScriptArea::kNoHome : home);
}

ScriptWord CScriptMemory::ResolveElement(ScriptWord text) const {
    const DWORD element = FindElement(ElementOf(text.Location()));
    if (!text.text || element == 0)
        return text;
    const ScriptWord word = m_area.LoadWord(element);
    return word.text ? word : text;
}

DWORD CScriptMemory::FindVariable(DWORD location) const {
    const DWORD distance = location - kSymbolBase;
    const DWORD symbol = distance / kSymbolStride;
    if (distance % kSymbolStride != 0 || symbol == 0 || symbol > m_symbols.Top())
        return 0;
    return m_symbols[symbol].size == kSizeFunction ? 0 : symbol;
}

bool CScriptMemory::LoadWord(DWORD location, ScriptWord& word) const {
    if (const DWORD symbol = FindVariable(location); symbol != 0) {
        word = m_symbols[symbol].word;
        return true;
    }
    const Span span = Find(location);
    if (span.count < kWordSize)
        return false;
    if (const DWORD position = AreaPosition(location); position != 0) {
        word = m_area.LoadWord(position);
        return true;
    }
    word.text = false;
    std::memcpy(&word.value, span.bytes, kWordSize);
    return true;
}

bool CScriptMemory::LoadCharacter(DWORD location, std::int32_t& character) const {
    location = Resolve(ScriptWord::Text(location)).Location();
    const Span span = Find(location);
    if (span.count == 0)
        return false;
    character = *span.bytes < 0x80 ? *span.bytes : *span.bytes - 0x100;
    return true;
}

bool CScriptMemory::StoreWord(DWORD location, ScriptWord word) {
    if (const DWORD symbol = FindVariable(location); symbol != 0) {
        m_symbols[symbol].word = word;
        return true;
    }
    const Span span = Find(location);
    const DWORD position = AreaPosition(location);
    if (!span.isWritable || span.count < kWordSize || position == 0)
        return false;
    m_area.StoreWord(position, word);
    return true;
}

bool CScriptMemory::StoreCharacter(DWORD location, BYTE character) {
    location = Resolve(ScriptWord::Text(location)).Location();
    const Span span = Find(location);
    if (!span.isWritable)
        return false;
    if (const DWORD position = AreaPosition(location); position != 0)
        m_area.StoreCharacter(position, character);
    else
        *span.bytes = character;
    return true;
}

bool CScriptMemory::ReadText(DWORD location, std::string_view& text) const {
    location = Resolve(ScriptWord::Text(location)).Location();
    const Span span = Find(location);
    if (span.count == 0)
        return false;
    const void* end = std::memchr(span.bytes, 0, span.count);
    const DWORD length = end == nullptr
                             ? span.count
                             : static_cast<DWORD>(static_cast<const BYTE*>(end) - span.bytes);
    text = {reinterpret_cast<const char*>(span.bytes), length};
    return true;
}

bool CScriptMemory::WriteText(DWORD location, std::string_view text) {
    location = Resolve(ScriptWord::Text(location)).Location();
    const Span span = Find(location);
    if (!span.isWritable)
        return false;
    const DWORD room = std::min(span.count, CScriptArea::kTextBuffer) - 1;
    const DWORD length = std::min(static_cast<DWORD>(text.size()), room);
    if (const DWORD position = AreaPosition(location); position != 0) {
        m_area.StoreText(position, text, length);
        return true;
    }
    if (length > 0)
        std::memmove(span.bytes, text.data(), length);
    span.bytes[length] = 0;
    return true;
}
