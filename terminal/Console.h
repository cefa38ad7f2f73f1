// CConsole: takes the console over, reads its keys, writes bytes, gives it back.
//
// Owned by the session, on its stack; one thread uses it. The platform calls the control handler on
// that thread too, while it waits. At most one console is taken over at a time. It is given back by
// Alt+F4, a control event, or the destructor, and from then on takes and shows nothing.
#pragma once

#include "common/UniqueHandle.h"
#include "console/Console.h"
#include "platform/Types.h"

class CConsole {
  public:
    CConsole() = default;
    CConsole(const CConsole&) = delete;
    CConsole& operator=(const CConsole&) = delete;

    // A key that carries no character. The key value is the virtual key code in the low 16 bits and
    // the scan code in the high ones. TRUE when it yields a character after all; here: FALSE.
    virtual BOOL OnKey(DWORD key, BYTE* character);

    // Takes the console over: raw keys, and control events that give it back. Always TRUE.
    BOOL Init();

    // Gives the console back; does nothing when it is not taken over.
    void Restore();

    // Ctrl+Break from now on only gives the console back, if there is a terminal to give back, and
    // what the session does goes on, as the user is told. All other events that give it back ask
    // for the end as well.
    void OutliveBreak() { m_bOutlivesBreak = true; }
    bool OutlivesBreak() const;

    // The title of the console's window; ignored while it is not taken over.
    void SetTitle(LPCSTR title);

    // Waits up to the given milliseconds; TRUE when ReadKey would not block.
    BOOL WaitForInput(DWORD milliseconds);

    // Reads one input event; blocks until there is one. TRUE when it delivered a character.
    BOOL ReadKey(BYTE* character);

    // Of the key whose first byte ReadKey delivered last, the other bytes are dropped when they
    // come.
    void DropRestOfKey() { m_bRestDropped = TRUE; }

    // Writes bytes to the console. FALSE when it is not taken over or the terminal is gone.
    BOOL WriteText(LPCVOID bytes, DWORD count) {
        if (!m_bActive)
            return FALSE;
        DWORD written = 0;
        if (WriteConsoleA(m_hOutput, bytes, count, &written, nullptr))
            return TRUE;
        m_bOutputGone = TRUE;
        return FALSE;
    }

    // For waits: the console's two handles (null before Init), and an event that is signalled while
    // the console is not taken over any more.
    HANDLE GetInputHandle() const { return m_hInput; }
    HANDLE GetOutputHandle() const { return m_hOutput; }
    HANDLE GetReleaseEvent() const { return m_hReleased; }

    // TRUE once ReadKey has met the end of the input: no key will come any more.
    BOOL IsInputEnded() const { return m_bInputEnded; }

    // TRUE once a write has failed: the terminal or the pipe's reader is gone, or the disk is full.
    BOOL IsOutputGone() const { return m_bOutputGone; }

  protected:
    ~CConsole();

    HANDLE m_hOutput = nullptr;
    HANDLE m_hInput = nullptr;
    DWORD m_dwSavedInputMode = 0;

  public:
    // Taken over, not yet given back. The loops of the session read it; only Init and Restore
    // write.
    BOOL m_bActive = FALSE;

  private:
    BOOL ReadKeyEvent(KEY_EVENT_RECORD& key);

    CUniqueHandle m_hReleased;
    BOOL m_bInputEnded = FALSE;
    BOOL m_bOutputGone = FALSE;
    bool m_bOutlivesBreak = false;
    BOOL m_bRestDropped = FALSE;
};

// The console that is taken over, or null: the control handler has no other way to find it.
extern CConsole* g_pActiveConsole;
