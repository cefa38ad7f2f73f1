// Each line gives a modem or a fault, unless it is empty or a comment: nothing in a file is passed
// over in silence.
#include "services/telephony/NamesFile.h"

#include "services/telephony/PlainText.h"
#include "services/telephony/PortLikeName.h"

#include <climits>
#include <utility>

namespace telephonyservice {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kWideMarks[] = {"\xFF\xFE", "\xFE\xFF"};

// Null when the name and the path will do.
const char* FindFault(std::string_view name, std::string_view path) {
    if (name.empty())
        return "there is no name before the '='";
    if (name.size() > kLongestName)
        return "the name is too long";
    if (!IsPlainText(name))
        return "the name has characters that cannot be shown";
    if (ReadsAsPort(name))
        return "the name would be taken for a port's";
    if (!path.starts_with('/'))
        return "the device is no path from the root";
    if (path.size() >= PATH_MAX)
        return "the device's path is too long";
    if (!IsPlainText(path))
        return "the device's path has characters that cannot be shown";
    return nullptr;
}

// Null when the line is understood; the modem is then stored.
const char* ParseLine(std::string_view line, LineDevice& modem) {
    const std::size_t equals = line.find('=');
    if (equals == std::string_view::npos)
        return "there is no '=' between name and device";
    const std::string_view name = Trim(line.substr(0, equals));
    const std::string_view path = Trim(line.substr(equals + 1));
    modem = {std::string(name), std::string(path), true};
    return FindFault(name, path);
}

// Takes the next line from the content, without its end and the blanks around it.
std::string_view TakeLine(std::string_view& content) {
    const std::size_t end = content.find('\n');
    std::string_view line = content.substr(0, end);
    content.remove_prefix(end == std::string_view::npos ? content.size() : end + 1);
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return Trim(line);
}

} // namespace

std::vector<LineDevice> ParseNamesFile(std::string_view content,
                                       std::vector<NamesFileFault>& faults) {
    std::vector<LineDevice> modems;
    for (const std::string_view mark : kWideMarks) {
        if (content.starts_with(mark)) {
            faults.push_back({1, "the file is UTF-16; save it as UTF-8"});
            return modems;
        }
    }
    if (content.starts_with(kByteOrderMark))
        content.remove_prefix(kByteOrderMark.size());
    for (unsigned number = 1; !content.empty(); ++number) {
        const std::string_view line = TakeLine(content);
        if (line.empty() || line.starts_with('#'))
            continue;
        LineDevice modem;
        if (const char* const fault = ParseLine(line, modem)) {
            faults.push_back({number, fault});
            continue;
        }
        if (modems.size() == kMostNamedModems) {
            faults.push_back({number, "there are too many modems"});
            break;
        }
        modems.push_back(std::move(modem));
    }
    return modems;
}

} // namespace telephonyservice
