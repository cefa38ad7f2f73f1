// What the binary operators make of two loaded values that are numbers or references.
//
// Pure; any thread may call. Integers wrap. Beside a reference a number counts elements of what it
// refers to; the distance of two references is in elements, too.
#pragma once

#include "script/ScriptValue.h"

// Puts the result of an operator's code into the left value; 0. ERR_POINTER for the distance of
// references of different depth, ERR_DIVIDE for a quotient or remainder by 0: the value is then of
// no use.
DWORD ApplyOperator(ScriptValue& left, BYTE operation, const ScriptValue& right);
