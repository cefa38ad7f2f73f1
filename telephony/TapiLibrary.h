// CVTapiLibrary: the telephony library "TAPI32.DLL", loaded when it is first needed.
//
// One for the process (see TapiService.h); its load is given back by Unload, at the latest when the
// process ends. Any thread may load and call; Unload is for whoever knows that no call is under
// way. A library that is missing is looked for again by every call.
#pragma once

#include "telephony/TapiFunctions.h"
#include "telephony/TapiStatus.h"

#include <atomic>
#include <initializer_list>

class CVTapiLibrary {
  public:
    constexpr CVTapiLibrary() = default;
    ~CVTapiLibrary() { Unload(); }
    CVTapiLibrary(const CVTapiLibrary&) = delete;
    CVTapiLibrary& operator=(const CVTapiLibrary&) = delete;

    // 0 when the library cannot be loaded, 1 when it was loaded before, otherwise what the handle
    // of the load tells in 32 bits.
    BOOL Load();

    void Unload();

    // The functions of the service under their names, with their parameters and results.
    // E_TAPI_NOLIBRARY without the library, E_TAPI_FAILED when it lacks the function.
#define WIRELET_TAPI_MEMBER(result, name, parameters)                                              \
    template <typename... Arguments> result name(Arguments... arguments) {                         \
        return Call<result parameters>(#name, arguments...);                                       \
    }
    WIRELET_TAPI_FUNCTIONS(WIRELET_TAPI_MEMBER)
#undef WIRELET_TAPI_MEMBER

  private:
    // The function is looked up for every call: the library may have been another one before.
    template <typename Function, typename... Arguments>
    LONG Call(LPCSTR szName, Arguments... arguments) {
        FARPROC address = nullptr;
        const LONG status = Find(szName, address);
        return status < 0 ? status : reinterpret_cast<Function*>(address)(arguments...);
    }

    // 0 with the address stored, or the status of a call that cannot be made.
    LONG Find(LPCSTR szName, FARPROC& address);

    std::atomic<HMODULE> m_hModule = nullptr;
};

#define WIRELET_TAPI_NAME(result, name, parameters) #name,
static_assert(
    std::initializer_list<const char*>{WIRELET_TAPI_FUNCTIONS(WIRELET_TAPI_NAME)}.size() == 62);
#undef WIRELET_TAPI_NAME
