#include "tests/telephony/ScriptedService.h"

#include "diagnostics/Debug.h"
#include "platform/Message.h"
#include "telephony/TapiResult.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <functional>

namespace {

constexpr int kMostOpen = 2; // objects at a time in any test, with a line and a phone each

CScriptedService* s_service = nullptr;

void Require(bool isSo, LPCSTR rule) {
    if (isSo)
        return;
    std::fprintf(stderr, "The telephony service is used wrongly: not so: %s\n", rule);
    std::abort();
}

template <auto Name, class Function> struct Entry;
template <auto Name, class... Parameters> struct Entry<Name, LONG(Parameters...)> {
    static LONG Run(Parameters... parameters) {
        ServiceCall call(Name());
        (call.Take(parameters), ...);
        return s_service->Run(call);
    }
};

struct Function {
    std::string_view name;
    FARPROC address;
};
#define SERVICE_FUNCTION(result, name, parameters)                                                 \
    {#name, reinterpret_cast<FARPROC>(&Entry<[] { return #name; }, result parameters>::Run)},
const Function kFunctions[] = {WIRELET_TAPI_FUNCTIONS(SERVICE_FUNCTION)};

} // namespace

void ServiceCall::TakeRecord(BYTE* bytes, DWORD total, std::size_t least) {
    Require(total >= least && total <= kMostResultBytes, "a record has a size of its kind");
    Require(std::none_of(bytes + sizeof(DWORD), bytes + total, std::identity()),
            "a record comes cleared");
    record = {bytes, total};
}

CScriptedService::CScriptedService() {
    s_service = this;
}

CScriptedService::~CScriptedService() {
    Require(loads == 0, "the library has been given back");
    Require(open[0].hApplication == 0 && open[1].hApplication == 0, "both services are down");
    s_service = nullptr;
}

LONG CScriptedService::Run(ServiceCall& call) {
    Open& mine = open[call.IsPhone()];
    Require(!call.Is("Initialize") || mine.hApplication == 0, "a service comes up once");
    Require(!call.Is("Shutdown") || (call.number != 0 && call.number == mine.hApplication),
            "a service goes by its own handle");
    Require(!call.Is("Close") || (call.number != 0 && mine.nDevices-- > 0), "what closes was open");
    mine.callback = call.callback ? call.callback : mine.callback;
    mine.instance = call.instance ? call.instance : mine.instance;
    const LONG result = Answer(call);
    if (call.Is("Initialize") && (call.IsPhone() ? result == 0 : result >= 0))
        mine.hApplication = *call.outs[0];
    // A handle counts even if the service says that it has failed.
    if (call.Is("Open") && *call.outs[0] != 0)
        Require(++mine.nDevices <= kMostOpen, "an object has one line and one phone open");
    if (call.Is("Shutdown"))
        mine = {};
    return result;
}

HMODULE LoadLibraryA(LPCSTR lpLibFileName) {
    if (!s_service || std::string_view(lpLibFileName) != "TAPI32.DLL" ||
        !s_service->CanLoad(nullptr))
        return nullptr;
    ++s_service->loads;
    return &s_service;
}

FARPROC GetProcAddress(HMODULE hModule, LPCSTR lpProcName) {
    Require(s_service->loads == 1 && hModule == &s_service, "the library is loaded");
    const auto* const found =
        std::ranges::find(kFunctions, std::string_view(lpProcName), &Function::name);
    Require(found != std::end(kFunctions), "the function is one of the list");
    return s_service->CanLoad(lpProcName) ? found->address : nullptr;
}

BOOL FreeLibrary(HMODULE hLibModule) {
    Require(s_service->loads-- == 1 && hLibModule == &s_service, "the library is loaded");
    return TRUE;
}

BOOL PeekMessageA(MSG* lpMsg, HWND, UINT, UINT, UINT) {
    *lpMsg = {};
    return s_service && s_service->HasMessage() ? TRUE : FALSE;
}

LRESULT DispatchMessageA(const MSG*) {
    s_service->Deliver();
    return 0;
}

BOOL CVDebug::Print(DWORD dwLevel, LPCSTR szFormat, va_list arguments) {
    char text[512];
    Require(std::vsnprintf(text, sizeof text, szFormat, arguments) > 0, "there is a text to trace");
    if (s_service)
        s_service->Trace(dwLevel, text);
    return TRUE;
}
