/*
** platform/modules.cpp: modules and their resources. A module is identified by the base
** address its loaded file has in memory (dladdr), which is also its HMODULE.
*/
#include <dlfcn.h>
#include <link.h>

#include <algorithm>
#include <cctype>
#include <map>
#include <vector>

#include "platform/module_resources.h"

namespace platform {

namespace {

struct ResourceFile {
    std::string name;
    std::string text;
    std::optional<ResourceScript> parsed;   /* .rc files, read when first needed */
};

using ModuleKey = const void *;

std::map<ModuleKey, std::vector<ResourceFile>> &registeredModules()
{
    static std::map<ModuleKey, std::vector<ResourceFile>> modules;  /* filled before main() */
    return modules;
}

ModuleKey moduleContaining(const void *address)
{
    Dl_info info{};
    if (!address || !dladdr(address, &info))
        return nullptr;
    return info.dli_fbase;
}

ModuleKey ownModule()
{
    static int anchor;
    return moduleContaining(&anchor);
}

std::string lower(std::string s)
{
    for (char &c : s)
        c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return s;
}

std::string baseName(const std::string &path)
{
    size_t slash = path.find_last_of("/\\");
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

bool endsWith(const std::string &s, const std::string &tail)
{
    return s.size() >= tail.size() && s.compare(s.size() - tail.size(), tail.size(), tail) == 0;
}

}

TemplateLookup findDialogTemplate(HMODULE module, const std::string &name)
{
    ModuleKey key = module ? static_cast<ModuleKey>(module) : ownModule();
    auto it = registeredModules().find(key);
    TemplateLookup result;
    if (it == registeredModules().end())
        return result;
    std::vector<ResourceFile> &files = it->second;
    auto resolve = [&files](const std::string &included) -> const std::string * {
        std::string wanted = lower(baseName(included));
        for (const ResourceFile &f : files)
            if (lower(baseName(f.name)) == wanted)
                return &f.text;
        return nullptr;
    };
    std::string wanted = lower(name);
    for (ResourceFile &f : files) {
        if (!endsWith(lower(f.name), ".rc"))
            continue;
        if (!f.parsed)
            f.parsed = parseResourceScript(f.name, f.text, resolve);
        if (!f.parsed->error.empty()) {
            result.error = f.parsed->error;
            return result;
        }
        for (const DialogTemplate &d : f.parsed->dialogs)
            if (lower(d.name) == wanted) {
                result.dialog = d;
                return result;
            }
    }
    return result;
}

}

using namespace platform;

extern "C" {

/* Registering a file name again replaces its text; every script of the module is read anew,
** since an included header may have changed. */
void RegisterModuleResource(const void *addressInModule, const char *fileName, const char *text)
{
    if (!fileName || !text)
        return;
    std::vector<ResourceFile> &files = registeredModules()[moduleContaining(addressInModule)];
    for (ResourceFile &f : files)
        f.parsed.reset();
    for (ResourceFile &f : files)
        if (lower(f.name) == lower(fileName)) {
            f.text = text;
            return;
        }
    files.push_back({fileName, text, std::nullopt});
}

/* By address: the module holding it. By name: a loaded shared object (dlopen without loading;
** the reference is kept unless GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT). A null name: the
** program itself, which holds the windowing system. */
BOOL GetModuleHandleExA(DWORD flags, LPCSTR nameOrAddress, HMODULE *module)
{
    if (!module)
        return FALSE;
    *module = nullptr;
    ModuleKey key = nullptr;
    if (flags & GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS) {
        key = moduleContaining(nameOrAddress);
    } else if (!nameOrAddress) {
        key = ownModule();
    } else {
        void *handle = dlopen(nameOrAddress, RTLD_LAZY | RTLD_NOLOAD);
        if (!handle)
            return FALSE;
        struct link_map *map = nullptr;
        if (dlinfo(handle, RTLD_DI_LINKMAP, &map) == 0 && map)
            key = moduleContaining(map->l_ld);
        if (flags & GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT)
            dlclose(handle);
    }
    if (!key)
        return FALSE;
    *module = reinterpret_cast<HMODULE>(const_cast<void *>(key));
    return TRUE;
}

}
