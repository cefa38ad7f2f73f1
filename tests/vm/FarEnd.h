// The far end of a serial device's cable, as a test holds it.
#pragma once

#include "tests/endtoend/Device.h"

// Opens the path and discards what was left there.
CDevice OpenFarEnd(const std::string& path);
