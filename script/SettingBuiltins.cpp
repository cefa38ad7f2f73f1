#include "script/SettingBuiltins.h"

#include "script/BuiltinSupport.h"

namespace builtins {
namespace {

ScriptWord Keep(CVScript& script, const ScriptWord& argument, std::string& setting) {
    return ScriptWord::Integer(TakeText(script, argument, setting) ? 1 : 0);
}

} // namespace

ScriptWord GetAPN(CVScript& script, const BuiltinArguments&) {
    script.Results()[EResponse::AccessPoint] = script.m_strApn;
    return ScriptWord::Text(CScriptMemory::ResponseLocation(EResponse::AccessPoint));
}

ScriptWord GetPhoneModel(CVScript& script, const BuiltinArguments&) {
    return KeepResult(script, EResultBuffer::PhoneModel, {});
}

ScriptWord GetPhoneManufacturer(CVScript& script, const BuiltinArguments&) {
    return KeepResult(script, EResultBuffer::PhoneManufacturer, {});
}

ScriptWord SetDialString(CVScript& script, const BuiltinArguments& arguments) {
    return Keep(script, arguments[0], script.m_strDialString);
}

ScriptWord SetUserName(CVScript& script, const BuiltinArguments& arguments) {
    return Keep(script, arguments[0], script.m_strUserName);
}

ScriptWord SetPassword(CVScript& script, const BuiltinArguments& arguments) {
    return Keep(script, arguments[0], script.m_strPassword);
}

} // namespace builtins
