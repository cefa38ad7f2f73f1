// A folder for one test's files, removed with all that is in it.
#pragma once

#include <string>
#include <string_view>

class CTempFolder {
  public:
    CTempFolder();
    CTempFolder(const CTempFolder&) = delete;
    CTempFolder& operator=(const CTempFolder&) = delete;
    ~CTempFolder();

    std::string GetPath(std::string_view name) const { return m_path + '/' + std::string(name); }
    // Makes a file and returns its path.
    std::string Write(std::string_view name, std::string_view content) const;

  private:
    std::string m_path;
};

// A file's bytes; empty when there is none.
std::string ReadWholeFile(const std::string& path);
