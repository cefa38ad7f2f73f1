// IDebugModule: what the optional debug module "VXDebug.dll" hands out through its export
// DllGetInterface.
//
// The module is an outside component; what it does with a text and its level is its own affair. Its
// operations are called by one thread at a time for each interface handed out.
#pragma once

#include "platform/Types.h"

// The levels of a text.
inline constexpr DWORD DEBUG_LEVEL_ERROR = 1;
inline constexpr DWORD DEBUG_LEVEL_TRACE = 8;

inline constexpr IID IID_IDebugModule = {
    0x8C41F7A6, 0x5D03, 0x4B92, {0xA7, 0x68, 0x21, 0xE9, 0x0B, 0x94, 0x3C, 0xD5}};

class IDebugModule : public IUnknown {
  public:
    // The name under which the texts that follow are known. Negative for failure.
    virtual HRESULT SetModuleName(LPCSTR szModuleName) = 0;

    // Takes one text. 0 when it was taken.
    virtual HRESULT Output(LPCSTR szText, DWORD dwLevel) = 0;

  protected:
    ~IDebugModule() = default;
};

// The export "DllGetInterface": stores the interface with one reference; negative for failure.
using DLLGETINTERFACE = HRESULT (*)(const IID& riid, void** ppvInterface);
