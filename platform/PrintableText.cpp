#include "platform/PrintableText.h"

namespace platform {

std::string PrintableText(std::string_view text) {
    std::string result(text);
    for (std::size_t at = 0; at < result.size(); ++at) {
        const auto byte = static_cast<unsigned char>(result[at]);
        const auto before = static_cast<unsigned char>(at > 0 ? result[at - 1] : 0);
        const bool isLateControl = before == 0xC2 && byte >= 0x80 && byte <= 0x9F;
        if (byte >= 0x20 && byte != 0x7F && !isLateControl)
            continue;
        if (isLateControl)
            result[at - 1] = '?';
        result[at] = '?';
    }
    return result;
}

} // namespace platform
