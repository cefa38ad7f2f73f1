// The basic types of the platform calls, under their published names and sizes.
//
// Values that the published interface fixes at 32 bits are 32 bits here on every machine. Nothing
// in this header allocates or may fail.
#pragma once

#include <cstddef>
#include <cstdint>

using BOOL = std::int32_t;
using BYTE = std::uint8_t;
using WORD = std::uint16_t;
using DWORD = std::uint32_t;
using LONG = std::int32_t;
using ULONG = std::uint32_t;
using UINT = std::uint32_t;
using SHORT = std::int16_t;
using HRESULT = std::int32_t;
using LPVOID = void*;
using LPCVOID = const void*;
using LPCSTR = const char*;
using LPDWORD = DWORD*;
using DWORD_PTR = std::uintptr_t; // wide enough for a pointer

inline constexpr BOOL FALSE = 0;
inline constexpr BOOL TRUE = 1;

// A reference to an object of the platform layer. Its value always fits 32 bits; it is never the
// object's address, so a stale or invented value is recognised and answered with an error.
using HANDLE = void*;

// A window: here the receiver of a thread's messages, seldom anything to look at. Null is none.
struct HWND__;
using HWND = HWND__*;

// A picture; nothing here has or shows one.
struct HICON__;
using HICON = HICON__*;

// Wide enough for a pointer.
using WPARAM = std::uintptr_t;
using LPARAM = std::intptr_t;
using LRESULT = std::intptr_t;

// What a failed CreateFileA returns; all bits set.
inline const HANDLE INVALID_HANDLE_VALUE = reinterpret_cast<HANDLE>(~std::uintptr_t{0});

inline constexpr DWORD INFINITE = 0xFFFFFFFF;

// A 128-bit interface identifier.
struct GUID {
    DWORD Data1;
    WORD Data2;
    WORD Data3;
    BYTE Data4[8];

    friend bool operator==(const GUID&, const GUID&) = default;
};
using IID = GUID;

inline constexpr HRESULT S_OK = 0;
inline constexpr HRESULT E_INVALIDARG = static_cast<HRESULT>(0x80070057);
inline constexpr HRESULT E_OUTOFMEMORY = static_cast<HRESULT>(0x8007000E);
inline constexpr HRESULT E_NOINTERFACE = static_cast<HRESULT>(0x80004002);

// The unknown-interface identifier and the three operations that every component interface begins
// with. QueryInterface stores a counted reference or null; AddRef and Release return the new count.
inline constexpr IID IID_IUnknown = {
    0x00000000, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

class IUnknown {
  public:
    virtual HRESULT QueryInterface(const IID& riid, void** ppvObject) = 0;
    virtual ULONG AddRef() = 0;
    virtual ULONG Release() = 0;

  protected:
    ~IUnknown() = default;
};
