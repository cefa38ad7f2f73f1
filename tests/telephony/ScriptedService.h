// CScriptedService: a telephony service that a test or a fuzzer plays, in place of any library.
//
// While one lives, it is what LoadLibraryA finds: each of its functions hands on its arguments as
// one ServiceCall. It stands in for the messages of the thread, too, by which a service tells of
// something, and for the trace. It ends the program when it is asked against the rules: when a
// service comes up twice or goes by another handle than its own, when what is not open is closed,
// when a record is not cleared or is of another size than it says, when anything is left. One at a
// time, on one thread.
#pragma once

#include "telephony/TapiFunctions.h"

#include <span>
#include <string>

struct ServiceCall {
    explicit ServiceCall(std::string_view function) : name(function), text(function) {}

    bool IsPhone() const { return name.starts_with("phone"); }
    bool Is(std::string_view operation) const {
        return name.substr(name[0] == 'l' ? 4 : 5) == operation;
    }

    void Take(DWORD value) { text += ' ' + std::to_string(number = value); }
    void Take(LPCSTR value) { text += value ? std::string(" '") + value + '\'' : " null"; }
    void Take(char*) { text += " *"; }
    void Take(LPCVOID pointer) { text += pointer ? " *" : " null"; }
    void Take(DWORD_PTR value) { instance = value; }
    void Take(LINECALLBACK value) { callback = value; }
    void Take(LPDWORD value) { outs[outs[0] ? 1 : 0] = value; }
    template <class Record>
    requires requires(Record* value) { value->dwTotalSize = 0; }
    void Take(Record* value) {
        text += value ? " [" + std::to_string(value->dwTotalSize) + ']' : " null";
        if (value)
            TakeRecord(reinterpret_cast<BYTE*>(value), value->dwTotalSize, sizeof *value);
    }
    void TakeRecord(BYTE* bytes, DWORD total, std::size_t least);

    std::string_view name;
    std::string text; // "lineHold 13"; [n] is a record of n bytes
    DWORD number = 0; // the last one
    LPDWORD outs[2] = {};
    DWORD_PTR instance = 0;
    LINECALLBACK callback = nullptr;
    std::span<BYTE> record; // cleared, but for its size; may be filled to its end
};

class CScriptedService {
  public:
    CScriptedService();
    virtual ~CScriptedService();

    virtual bool CanLoad(LPCSTR function) = 0; // null: the library
    virtual LONG Answer(ServiceCall& call) = 0;
    virtual bool HasMessage() = 0;
    virtual void Deliver() = 0; // a message
    virtual void Trace(DWORD level, const std::string& text) = 0;

    LONG Run(ServiceCall& call);

    // What is up and open, for lines and for phones.
    struct Open {
        DWORD hApplication = 0;
        int nDevices = 0;
        LINECALLBACK callback = nullptr;
        DWORD_PTR instance = 0; // the newest one
    };
    Open open[2];
    int loads = 0;
};
