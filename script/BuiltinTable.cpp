#include "script/BuiltinTable.h"

#include "script/DeviceBuiltins.h"
#include "script/SettingBuiltins.h"
#include "script/TextBuiltins.h"
#include "script/UserBuiltins.h"

const std::array<BuiltinEntry, kBuiltinCount + 1> g_Builtins = {{
    {"Beep", builtins::Beep, "", 'i'},
    {"GetAPN", builtins::GetAPN, "", 't'},
    {"GetBaudRate", builtins::GetBaudRate, "", 'i'},
    {"GetPhoneModel", builtins::GetPhoneModel, "", 't'},
    {"GetPhoneManufacturer", builtins::GetPhoneManufacturer, "", 't'},
    {"Hangup", builtins::Hangup, "", 'i'},
    {"Max", builtins::Max, "ii", 'i'},
    {"MessageBox", builtins::MessageBox, "tt", 'i'},
    {"Min", builtins::Min, "ii", 'i'},
    {"PlaySound", builtins::PlaySound, "t", 'i'},
    {"SendCommand", builtins::SendCommand, "t", 'i'},
    {"SendCommandGetString", builtins::SendCommandGetString, "t", 't'},
    {"SendFile", builtins::SendFile, "t", 'i'},
    {"SendString", builtins::SendString, "t", 'i'},
    {"SetBaudRate", builtins::SetBaudRate, "i", 'i'},
    {"SetDialString", builtins::SetDialString, "t", 'i'},
    {"SetUserName", builtins::SetUserName, "t", 'i'},
    {"SetPassword", builtins::SetPassword, "t", 'i'},
    {"SetRetry", builtins::SetRetry, "i", 'i'},
    {"SetTimeout", builtins::SetTimeout, "i", 'i'},
    {"Sprintf", builtins::Sprintf, "tt", 'i'},
    {"String", builtins::String, "i", 't'},
    {"StringCat", builtins::StringCat, "tt", 't'},
    {"StringCompare", builtins::StringCompare, "tt", 'i'},
    {"StringCompareI", builtins::StringCompareI, "tt", 'i'},
    {"StringFind", builtins::StringFind, "tt", 'i'},
    {"StringLeft", builtins::StringLeft, "ti", 't'},
    {"StringLength", builtins::StringLength, "t", 'i'},
    {"StringRight", builtins::StringRight, "ti", 't'},
    {"StringMid", builtins::StringMid, "tii", 't'},
    {"StringToNumber", builtins::StringToNumber, "t", 'i'},
    {"Wait", builtins::Wait, "i", 'i'},
    {"WaitForString", builtins::WaitForString, "ti", 'i'},
    {nullptr, nullptr, nullptr, 0},
}};
