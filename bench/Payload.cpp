#include "bench/Payload.h"

#include <array>
#include <cstdio>

namespace {

constexpr std::array kWords = {"alpha", "bravo", "charlie", "delta", "echo",  "foxtrot", "golf",
                               "hotel", "india", "juliett", "kilo",  "lima",  "mike",    "november",
                               "oscar", "papa",  "quebec",  "romeo", "sierra"};

const char* Word(std::size_t number) {
    return kWords[number * 7 % kWords.size()];
}

} // namespace

std::string MakePlainLines(std::size_t size) {
    std::string text;
    for (std::size_t number = 0; text.size() < size; ++number) {
        std::array<char, 16> head;
        std::snprintf(head.data(), head.size(), "%07zu ", number);
        std::string line = head.data();
        for (std::size_t word = number; line.size() < 70; ++word)
            line += std::string(Word(word)) + ' ';
        line.resize(78, '.');
        text += line + "\r\n";
    }
    return text;
}

std::string MakeColouredLines(std::size_t size) {
    std::string text;
    for (std::size_t number = 0; text.size() < size; ++number) {
        std::array<char, 160> line;
        std::snprintf(line.data(), line.size(),
                      "%07zu \x1b[1;3%zum%s\x1b[0m %s \x1b[3%zu;4%zum%s %s\x1b[0m %s\r\n", number,
                      1 + number % 7, Word(number), Word(number + 1), 1 + number % 6, number % 5,
                      Word(number + 2), Word(number + 3), Word(number + 4));
        text += line.data();
    }
    return text;
}
