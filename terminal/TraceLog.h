// CTraceLog: the traffic of a session in a file (-O): everything sent and received, line by line.
//
// Owned by the session, on its stack; used from its thread. From Open on it is the sink of the data
// trace, and has what is received written a second after it came at the latest, with a timer that
// runs only while there is something to write. When the log goes, what was received last is written
// too and the file is closed. A file that takes its time then is waited for, for as long as it
// takes something, with the console given back.
#pragma once

#include "modem/DataTrace.h"
#include "terminal/GatheredFile.h"

#include <string>

class CConsole;

class CTraceLog final : public ITraceSink {
  public:
    explicit CTraceLog(CConsole& console) : m_console(console) {}
    CTraceLog(const CTraceLog&) = delete;
    CTraceLog& operator=(const CTraceLog&) = delete;
    ~CTraceLog();

    // Creates the file and begins. FALSE when it cannot be created; the user has then been told.
    BOOL Open(const std::string& fileName);

    BOOL IsCapturing() const override { return m_bCapturing; }

    // A file that takes no more, or too slowly, ends the log; the user is told, once.
    void WriteLine(std::string_view line) override;

    void OnReceiving(bool fits) override;

  private:
    void OnTimer();
    void TellWait();
    void TellFailure();

    CConsole& m_console;
    std::string m_strFileName;
    CGatheredFile m_file;
    DWORD m_dwFailure = 0; // the file's; the user has been told once m_bCapturing is FALSE
    BOOL m_bCapturing = FALSE;
    bool m_bTimerSet = false;
    bool m_bInTimer = false;
};
