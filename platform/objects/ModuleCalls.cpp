// A library is looked for in the program's own folders first, then as the loader does; every load
// is remembered, because the loader itself does not survive a handle that is none.
#include "platform/Module.h"

#include "platform/Error.h"

#include <dlfcn.h>
#include <sys/auxv.h>
#include <unistd.h>

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <mutex>
#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::size_t kLibraryNameMax =
    200; // with "lib" and ".so" well within a file name's length

// The loads that have not been given back, one entry each.
class CLoadedModules {
  public:
    bool Add(HMODULE module) {
        const std::lock_guard lock(m_mutex);
        try {
            m_modules.push_back(module);
        } catch (const std::bad_alloc&) {
            return false;
        }
        return true;
    }
    bool Has(HMODULE module) {
        const std::lock_guard lock(m_mutex);
        return std::find(m_modules.begin(), m_modules.end(), module) != m_modules.end();
    }
    bool Remove(HMODULE module) {
        const std::lock_guard lock(m_mutex);
        const auto found = std::find(m_modules.begin(), m_modules.end(), module);
        if (found == m_modules.end())
            return false;
        m_modules.erase(found);
        return true;
    }

  private:
    std::mutex m_mutex;
    std::vector<HMODULE> m_modules;
};

CLoadedModules& LoadedModules() {
    static CLoadedModules& modules = *new CLoadedModules; // outlives every user
    return modules;
}

// Empty for a name that is refused.
std::string FileNameOf(std::string_view publishedName) {
    const std::string_view stem = publishedName.substr(0, publishedName.find_last_of('.'));
    if (stem.empty() || stem.size() > kLibraryNameMax ||
        publishedName.find('/') != std::string_view::npos)
        return {};
    std::string name = "lib";
    for (const char c : stem)
        name += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return name + ".so";
}

// With the '/' at its end.
std::string FolderOf(std::string_view program) {
    return std::string(program.substr(0, program.find_last_of('/') + 1));
}

// As the system tells. Empty when it does not.
std::string ToldFolder() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    if (length <= 0 || static_cast<std::size_t>(length) >= sizeof path)
        return {};
    return FolderOf({path, static_cast<std::size_t>(length)});
}

// As the program was started: there is no /proc in every chroot, and once a chroot's mounts are a
// process's own, it names the path outside. Empty when the name leads nowhere, and where the
// starter has fewer rights than the program, whose module he must not choose.
std::string StartFolder() {
    char path[PATH_MAX];
    const unsigned long name = getauxval(AT_SECURE) == 0 ? getauxval(AT_EXECFN) : 0;
    if (name == 0 || realpath(reinterpret_cast<const char*>(name), path) == nullptr)
        return {};
    return FolderOf(path);
}

HMODULE Load(const std::string& fileName) {
    for (const std::string& programFolder : {ToldFolder(), StartFolder()}) {
        if (programFolder.empty())
            continue;
        for (const char* const folder : {"", "../lib/wirelet/"}) {
            const std::string path = std::string(programFolder).append(folder).append(fileName);
            if (access(path.c_str(), F_OK) != 0)
                continue;
            if (const HMODULE module = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL))
                return module;
        }
    }
    return dlopen(fileName.c_str(), RTLD_NOW | RTLD_LOCAL);
}

HMODULE LoadAndRemember(LPCSTR publishedName) {
    const std::string fileName = FileNameOf(publishedName);
    const HMODULE module = fileName.empty() ? nullptr : Load(fileName);
    if (module == nullptr || LoadedModules().Add(module))
        return module;
    dlclose(module);
    return nullptr;
}

} // namespace

HMODULE LoadLibraryA(LPCSTR lpLibFileName) {
    HMODULE module = nullptr;
    try {
        if (lpLibFileName != nullptr)
            module = LoadAndRemember(lpLibFileName);
    } catch (const std::bad_alloc&) {
        module = nullptr;
    }
    if (module == nullptr)
        SetLastError(ERROR_MOD_NOT_FOUND);
    return module;
}

FARPROC GetProcAddress(HMODULE hModule, LPCSTR lpProcName) {
    if (!LoadedModules().Has(hModule)) {
        SetLastError(ERROR_INVALID_HANDLE);
        return nullptr;
    }
    void* const address = lpProcName != nullptr ? dlsym(hModule, lpProcName) : nullptr;
    if (address == nullptr)
        SetLastError(ERROR_PROC_NOT_FOUND);
    return reinterpret_cast<FARPROC>(address);
}

HMODULE GetModuleHandleA(LPCSTR lpModuleName) {
    // Its address is the program's alone; a load of the program would have to be given back.
    static const char theProgram = 0;
    if (lpModuleName == nullptr)
        return const_cast<char*>(&theProgram);
    SetLastError(ERROR_MOD_NOT_FOUND);
    return nullptr;
}

BOOL FreeLibrary(HMODULE hLibModule) {
    if (!LoadedModules().Remove(hLibModule))
        return platform::FailWith(ERROR_INVALID_HANDLE);
    dlclose(hLibModule);
    return TRUE;
}
