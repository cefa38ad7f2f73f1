#include "services/telephony/ModuleReference.h"

#include <dlfcn.h>

namespace telephonyservice {
namespace {

const char g_inModule = 0;

void* LoadAgain(int flags) {
    Dl_info module{};
    if (dladdr(&g_inModule, &module) == 0)
        return nullptr;
    return dlopen(module.dli_fname, RTLD_LAZY | RTLD_NOLOAD | flags);
}

} // namespace

bool HoldModule(bool forGood) {
    return LoadAgain(forGood ? RTLD_NODELETE : 0) != nullptr;
}

void ReleaseModule() {
    void* const module = LoadAgain(0);
    if (module == nullptr)
        return;
    dlclose(module); // what finding it has added
    dlclose(module);
}

} // namespace telephonyservice
