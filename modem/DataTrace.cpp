// Each line is made in one pass in a buffer of fixed size, and hexadecimal by a table: with a log,
// this runs for every byte of a session.
#include "modem/DataTrace.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <utility>

namespace {

constexpr std::size_t kMostPending = 10000;
constexpr std::size_t kBytesPerLine = 30;

constexpr std::string_view kSent = "[PC ==>     ] ";
constexpr std::string_view kReceived = "[  <== Phone] ";

// Where the hexadecimal column begins, unless the characters before it take more.
constexpr std::size_t kHexadecimalColumn = 70;

// A mark is the longest that a byte becomes among the characters.
constexpr std::size_t kMarkLength = 4;
constexpr std::size_t kLongestLine = kSent.size() + 5 + kBytesPerLine * (kMarkLength + 3);

// Received bytes that wait for the next send.
struct PendingBytes {
    std::array<BYTE, kMostPending> bytes;
    std::size_t count = 0;
    std::size_t Room() const { return kMostPending - count; }
};

PendingBytes g_pending;
ITraceSink* g_sink = nullptr;

// Each byte as "%02x ", and one character more, so that it is copied as a word.
constexpr auto kHexadecimal = [] {
    constexpr char kDigits[] = "0123456789abcdef";
    std::array<std::array<char, 4>, 256> texts{};
    for (std::size_t byte = 0; byte < texts.size(); ++byte)
        texts[byte] = {kDigits[byte >> 4], kDigits[byte & 0x0F], ' ', ' '};
    return texts;
}();

// What follows appends to a line in the making and returns its end. It is no class with the end as
// a member: the compiler would store that again for each character.

char* Put(char* end, std::string_view text) {
    std::memcpy(end, text.data(), text.size());
    return end + text.size();
}

char* PutCharacters(char* end, const BYTE* bytes, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
        const BYTE byte = bytes[index];
        if (byte == '\r')
            end = Put(end, "<CR>");
        else if (byte == '\n')
            end = Put(end, "<LF>");
        else if (byte != 0)
            *end++ = static_cast<char>(byte);
    }
    return end;
}

char* PutHexadecimal(char* end, const BYTE* bytes, std::size_t count) {
    for (std::size_t index = 0; index < count; ++index) {
        const auto& text = kHexadecimal[bytes[index]];
        std::memcpy(end, text.data(), text.size());
        end += text.size() - 1;
    }
    return end;
}

void DumpLine(const BYTE* bytes, std::size_t count, BOOL sent) {
    std::array<char, kLongestLine> line;
    char* const column = line.data() + kHexadecimalColumn;
    char* end = Put(line.data(), sent ? kSent : kReceived);
    end = Put(end, " [");
    end = PutCharacters(end, bytes, count);
    end = Put(end, "]");
    if (end < column)
        end = std::fill_n(end, column - end, ' ');
    end = Put(end, "[");
    end = PutHexadecimal(end, bytes, count);
    end = Put(end, "]");
    g_sink->WriteLine({line.data(), static_cast<std::size_t>(end - line.data())});
}

} // namespace

void SetTraceSink(ITraceSink* sink) {
    g_sink = sink;
    g_pending.count = 0;
}

void TraceData(LPCVOID bytes, DWORD count, BOOL sent) {
    if (sent) {
        DumpPending();
        DumpData(bytes, count, TRUE);
        return;
    }
    if (count == 0)
        return;
    if (g_sink)
        g_sink->OnReceiving(count <= g_pending.Room());
    if (count > g_pending.Room())
        return;
    std::memcpy(g_pending.bytes.data() + g_pending.count, bytes, count);
    g_pending.count += count;
}

void DumpPending() {
    // Emptied first: a sink that waits for its file may be asked for the same meanwhile.
    const std::size_t count = std::exchange(g_pending.count, 0);
    DumpData(g_pending.bytes.data(), static_cast<DWORD>(count), FALSE);
}

void DumpData(LPCVOID bytes, DWORD count, BOOL sent) {
    if (!g_sink || !g_sink->IsCapturing())
        return;
    const BYTE* const first = static_cast<const BYTE*>(bytes);
    for (std::size_t done = 0; done < count; done += kBytesPerLine)
        DumpLine(first + done, std::min<std::size_t>(kBytesPerLine, count - done), sent);
}
