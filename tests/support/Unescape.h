// The escapes of the files of texts.
#pragma once

#include <string>
#include <string_view>

// \r, \n, \t, \e (ESC) and \x00; any other character stands for itself behind a backslash.
inline std::string Unescape(std::string_view text) {
    std::string bytes;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] != '\\') {
            bytes += text[at];
        } else if (text[++at] == 'x') {
            bytes += static_cast<char>(std::stoi(std::string(text.substr(at + 1, 2)), {}, 16));
            at += 2;
        } else {
            const std::size_t kind = std::string_view("rnte").find(text[at]);
            bytes += kind == std::string_view::npos ? text[at] : "\r\n\t\x1B"[kind];
        }
    }
    return bytes;
}
