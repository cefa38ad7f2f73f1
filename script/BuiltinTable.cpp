#include "script/BuiltinTable.h"

#include "script/DeviceBuiltins.h"
#include "script/SettingBuiltins.h"
#include "script/TextBuiltins.h"
#include "script/UserBuiltins.h"

const std::array<BuiltinEntry, BUILTIN_COUNT + 1> g_Builtins = {{
    {"Beep", builtins::Beep, ""},
    {"GetAPN", builtins::GetAPN, ""},
    {"GetBaudRate", builtins::GetBaudRate, ""},
    {"GetPhoneModel", builtins::GetPhoneModel, ""},
    {"GetPhoneManufacturer", builtins::GetPhoneManufacturer, ""},
    {"Hangup", builtins::Hangup, ""},
    {"Max", builtins::Max, "ii"},
    {"MessageBox", builtins::MessageBox, "tt"},
    {"Min", builtins::Min, "ii"},
    {"PlaySound", builtins::PlaySound, "t"},
    {"SendCommand", builtins::SendCommand, "t"},
    {"SendCommandGetString", builtins::SendCommandGetString, "t"},
    {"SendFile", builtins::SendFile, "t"},
    {"SendString", builtins::SendString, "t"},
    {"SetBaudRate", builtins::SetBaudRate, "i"},
    {"SetDialString", builtins::SetDialString, "t"},
    {"SetUserName", builtins::SetUserName, "t"},
    {"SetPassword", builtins::SetPassword, "t"},
    {"SetRetry", builtins::SetRetry, "i"},
    {"SetTimeout", builtins::SetTimeout, "i"},
    {"Sprintf", builtins::Sprintf, "tt"},
    {"String", builtins::String, "i"},
    {"StringCat", builtins::StringCat, "tt"},
    {"StringCompare", builtins::StringCompare, "tt"},
    {"StringCompareI", builtins::StringCompareI, "tt"},
    {"StringFind", builtins::StringFind, "tt"},
    {"StringLeft", builtins::StringLeft, "ti"},
    {"StringLength", builtins::StringLength, "t"},
    {"StringRight", builtins::StringRight, "ti"},
    {"StringMid", builtins::StringMid, "tii"},
    {"StringToNumber", builtins::StringToNumber, "t"},
    {"Wait", builtins::Wait, "i"},
    {"WaitForString", builtins::WaitForString, "ti"},
    {nullptr, nullptr, nullptr},
}};
