#include "tests/support/TempFolder.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>

CTempFolder::CTempFolder() {
    char pattern[] = "/tmp/wirelet-test-XXXXXX";
    EXPECT_NE(mkdtemp(pattern), nullptr);
    m_path = pattern;
}

CTempFolder::~CTempFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::string CTempFolder::Write(std::string_view name, std::string_view content) const {
    const std::string path = GetPath(name);
    std::ofstream file(path, std::ios::binary);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
    EXPECT_TRUE(file.flush());
    return path;
}

std::string ReadWholeFile(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}
