#include "terminal/CaptureFile.h"

#include "platform/File.h"

std::string ToCaptureText(std::string_view text) {
    std::string result;
    result.reserve(text.size() + text.size() / 8);
    for (const char letter : text) {
        if (letter == '\n')
            continue;
        result += letter;
        if (letter == '\r')
            result += '\n';
    }
    return result;
}

BOOL CCaptureFile::Open(const std::string& fileName) {
    const HANDLE file = CreateFileA(fileName.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr,
                                    CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
    if (file == INVALID_HANDLE_VALUE)
        return FALSE;
    m_hFile = CUniqueHandle(file);
    return TRUE;
}

BOOL CCaptureFile::WriteCapture(std::string_view text) {
    return m_hFile ? WriteBytes(ToCaptureText(text)) : TRUE;
}

BOOL CCaptureFile::WriteBytes(std::string_view bytes) {
    DWORD written = 0;
    return WriteFile(m_hFile, bytes.data(), static_cast<DWORD>(bytes.size()), &written, nullptr);
}

BOOL CCaptureFile::Close() {
    if (!m_hFile)
        return TRUE;
    return CloseHandle(m_hFile);
}
