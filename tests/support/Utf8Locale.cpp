// The tests work in a locale of UTF-8, whatever the one is that they are started in.
#include <cstdlib>

namespace {
const int g_isSet = setenv("LC_ALL", "C.UTF-8", 1);
}
