#include "terminal/CommandFile.h"

#include "common/TextFile.h"
#include "platform/Error.h"
#include "platform/objects/EndRequest.h"
#include "terminal/CaptureFile.h"
#include "terminal/CommandLine.h"
#include "terminal/TermConsole.h"
#include "terminal/TermModem.h"
#include "terminal/UserMessage.h"

namespace {

constexpr char kCommentMark = ';';

// One run, with its two files.
class CCommandFileRun {
  public:
    CCommandFileRun(CTermModem& modem, CTermConsole& console, const std::string& deviceName)
        : m_modem(modem), m_console(console), m_strDeviceName(deviceName) {}

    void Run(const std::string& fileName);

  private:
    bool OpenFiles(const std::string& fileName);
    // False when the run is over.
    bool SendLine(std::string line);
    bool Capture(std::string_view text);
    void Show(std::string_view text);

    CTermModem& m_modem;
    CTermConsole& m_console;
    const std::string& m_strDeviceName;
    CTextFile m_commands;
    CCaptureFile m_capture;
};

void CCommandFileRun::Run(const std::string& fileName) {
    if (!OpenFiles(fileName))
        return;

    std::string line;
    EReadLine result = EReadLine::Line;
    while ((result = m_commands.ReadLine(line)) == EReadLine::Line) {
        if (line.empty() || line.front() == kCommentMark)
            continue;
        if (!SendLine(line))
            break;
    }
    if (result == EReadLine::Error && !platform::IsEndRequested())
        TellFileError(m_console, "Cannot read", fileName, GetLastError());
    if (!m_capture.Close())
        TellFileError(m_console, "Cannot write", g_strOutputFile, GetLastError());
}

bool CCommandFileRun::OpenFiles(const std::string& fileName) {
    if (!m_commands.Open(fileName.c_str())) {
        TellFileFailure(m_console, "Cannot open", fileName, GetLastError());
        return false;
    }
    if (!g_strOutputFile.empty() && !m_capture.Open(g_strOutputFile)) {
        TellFileFailure(m_console, "Cannot create", g_strOutputFile, GetLastError());
        return false;
    }
    return true;
}

bool CCommandFileRun::SendLine(std::string line) {
    Show(line);
    Show("\n");
    line += '\r';
    if (!Capture(line))
        return false;

    std::string response;
    if (m_modem.SendLineWaitFinal(line, response)) {
        Show(response);
        return Capture(response);
    }
    if (m_modem.IsDeviceGone()) {
        // What the device still said before it went belongs to the record.
        Show(response);
        if (Capture(response))
            TellDeviceGone(m_console, m_strDeviceName);
        return false;
    }
    if (platform::IsEndRequested()) {
        Capture(response);
        return false;
    }
    Show("No Response\n");
    return Capture("No Response\r");
}

bool CCommandFileRun::Capture(std::string_view text) {
    if (m_capture.WriteCapture(text))
        return true;
    TellFileError(m_console, "Cannot write", g_strOutputFile, GetLastError());
    return false;
}

void CCommandFileRun::Show(std::string_view text) {
    m_console.WriteText(text.data(), static_cast<DWORD>(text.size()));
}

} // namespace

void RunCommandFile(CTermModem& modem, CTermConsole& console, const std::string& fileName,
                    const std::string& deviceName) {
    CCommandFileRun(modem, console, deviceName).Run(fileName);
}
