// What the benchmarks send: lines of text, plain and coloured, the same in every run.
#pragma once

#include <cstddef>
#include <string>

// Whole lines of 80 columns, at least the given number of bytes.
std::string MakePlainLines(std::size_t size);

// The same with a change of colours at every other word.
std::string MakeColouredLines(std::size_t size);
