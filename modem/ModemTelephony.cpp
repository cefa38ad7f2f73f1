// A modem is opened step by step. A step that fails gives back what those before it took, writes
// its trace line, and only then leaves the reason as the last error, which the trace may change.
#include "modem/Modem.h"

#include "diagnostics/ModuleTrace.h"
#include "platform/Comm.h"
#include "platform/Error.h"
#include "platform/TaskMemory.h"
#include "platform/Wait.h"
#include "telephony/Tapi.h"
#include "telephony/TapiRecord.h"
#include "telephony/TapiStatus.h"

#include <cstring>
#include <span>
#include <string_view>

using platform::FailWith;

namespace {

constexpr char kHandleClass[] = "comm/datamodem";

// What a failed request says to the one who opens a device.
struct ErrorRow {
    LONG status;
    DWORD error;
};

constexpr ErrorRow kErrors[] = {
    {LINEERR_ALLOCATED, ERROR_ACCESS_DENIED},
    {LINEERR_INUSE, ERROR_BUSY},
    {LINEERR_NODEVICE, ERROR_FILE_NOT_FOUND},
    {LINEERR_NODRIVER, ERROR_NOT_SUPPORTED},
    {LINEERR_NOMEM, ERROR_NOT_ENOUGH_MEMORY},
    {LINEERR_NOTOWNER, ERROR_ACCESS_DENIED},
    {LINEERR_RESOURCEUNAVAIL, ERROR_TOO_MANY_OPEN_FILES},
    {E_TAPI_NODEVICE, ERROR_FILE_NOT_FOUND},
    {E_TAPI_NOLIBRARY, ERROR_MOD_NOT_FOUND},
    {E_TAPI_NOMEMORY, ERROR_NOT_ENOUGH_MEMORY},
    {E_TAPI_TIMEOUT, ERROR_TIMEOUT},
};

BOOL FailWithStatus(LONG status) {
    for (const ErrorRow& row : kErrors)
        if (row.status == status)
            return FailWith(row.error);
    return FailWith(ERROR_GEN_FAILURE);
}

// A modem handed over as it is, ready for AT commands, without a number dialled.
LINECALLPARAMS GetPassThroughCall() {
    LINECALLPARAMS parameters{};
    parameters.dwTotalSize = sizeof parameters;
    parameters.dwBearerMode = LINEBEARERMODE_PASSTHROUGH;
    parameters.dwMediaMode = LINEMEDIAMODE_DATAMODEM;
    parameters.dwCallParamFlags = LINECALLPARAMFLAGS_ORIGOFFHOOK;
    parameters.dwAddressMode = LINEADDRESSMODE_ADDRESSID;
    return parameters;
}

// A port whose device is gone or whose driver refuses is one all the same.
bool IsPort(HANDLE handle) {
    DCB settings{};
    return GetCommState(handle, &settings) || GetLastError() != ERROR_INVALID_HANDLE;
}

} // namespace

BOOL CVModem::OpenDevice(const std::string& name) {
    m_strDevicePath.clear();
    DWORD device = 0;
    if (!StartTelephony(name) || !FindDevice(name, device))
        return FALSE;
    const LONG status = PlaceCall(name, device);
    if (status != 0) {
        m_strDevicePath = AskDevicePath(device);
        return FailWithStatus(status);
    }
    HANDLE port = nullptr;
    if (!TakeHandle(port)) {
        DebugTrace("CVModem::OpenDevice() - LineGetID Failed - %s\n", name.c_str());
        HangUpCall();
        return FailWith(ERROR_GEN_FAILURE);
    }
    AttachHandle(port, TRUE);
    if (m_pSerial && m_pSerial->IsOpen())
        return TRUE;
    // The port could not start its thread: the handle is still ours.
    DebugTrace("CVModem::OpenDevice() - AttachHandle Failed - %s\n", name.c_str());
    Close();
    CloseHandle(port);
    return FailWith(ERROR_NOT_ENOUGH_MEMORY);
}

BOOL CVModem::AttachHandle(HANDLE port, BOOL overlapped) {
    if (m_pSerial)
        m_pSerial->AttachHandle(port, overlapped);
    m_bCallActive = TRUE;
    m_bPortOpen = TRUE;
    return TRUE;
}

BOOL CVModem::StartTelephony(const std::string& name) {
    if (!m_pTapi)
        CreateTapi(m_pTapi.Receive(), nullptr);
    if (m_pTapi && CVTapi::LoadTapi())
        return TRUE;
    DebugTrace("CVModem::OpenDevice() - Tapi Init Failed - %s\n", name.c_str());
    return FailWith(m_pTapi ? ERROR_MOD_NOT_FOUND : ERROR_NOT_ENOUGH_MEMORY);
}

BOOL CVModem::FindDevice(const std::string& name, DWORD& device) {
    const LONG status = m_pTapi->LineDeviceNameToID(name.c_str(), &device);
    if (status == 0)
        return TRUE;
    DebugTrace("CVModem::OpenDevice() - Cannot Find Device - %s\n", name.c_str());
    return FailWithStatus(status);
}

LONG CVModem::PlaceCall(const std::string& name, DWORD device) {
    LONG status = m_pTapi->LineOpen(device, LINECALLPRIVILEGE_OWNER, LINEMEDIAMODE_DATAMODEM);
    if (status != 0) {
        DebugTrace("CVModem::OpenDevice() - LineOpen Failed - %s\n", name.c_str());
        // A line that was open before stays; one that opened with an odd result does not.
        if (status > 0)
            m_pTapi->LineClose();
        return status;
    }
    const LINECALLPARAMS parameters = GetPassThroughCall();
    status = m_pTapi->LineMakeCall(nullptr, 0, &parameters, TRUE);
    if (status != 0) {
        DebugTrace("CVModem::OpenDevice() - LineMakeCall Failed - %s\n", name.c_str());
        m_pTapi->LineClose();
    }
    return status;
}

// Only the service that comes with this system tells a path; another one's text is none.
std::string CVModem::AskDevicePath(DWORD device) {
    LINEDEVCAPS* capabilities = nullptr;
    if (m_pTapi->LineGetDevCaps(device, &capabilities) < 0)
        return {};
    const CTaskMemory<LINEDEVCAPS> owner(capabilities);
    const std::string_view path = DeviceTextOf(*capabilities).value_or("");
    return path.starts_with('/') ? std::string(path) : std::string();
}

// The service's answer begins with the handle, 32 bits wide as all handles are. A number that is no
// port may be anybody's handle, so it is not closed: the service has it back with the call.
BOOL CVModem::TakeHandle(HANDLE& port) {
    VARSTRING* identifier = nullptr;
    const LONG status = m_pTapi->LineGetID(&identifier, kHandleClass);
    const CTaskMemory<VARSTRING> owner(identifier);
    if (status != 0)
        return FALSE;
    const std::span<const BYTE> bytes = BytesOf(*identifier);
    DWORD value = 0;
    if (bytes.size() < sizeof value)
        return FALSE;
    std::memcpy(&value, bytes.data(), sizeof value);
    port = reinterpret_cast<HANDLE>(std::uintptr_t{value});
    return IsPort(port) ? TRUE : FALSE;
}

void CVModem::HangUpCall() {
    // A handle that AttachHandle was given may be of somebody else's call.
    if (!m_pTapi)
        return;
    m_pTapi->LineDrop(FALSE);
    m_pTapi->LineClose();
}
