// The device of these tests; those in tests/vm have another.
#include "tests/endtoend/Device.h"

CDevice MakeDevice() {
    return CDevice();
}
