#include "GdalBackend.h"

#include <dlfcn.h>
#include <unistd.h>

#include <cstdlib>
#include <mutex>

namespace satwalk::map {

namespace {

constexpr const char* kModuleName = "satwalk_gdal.so";

// The folder of the running executable, with its slash; empty when unknown.
std::string ExecutableFolder() {
    std::string path(4096, '\0');
    const ssize_t n = ::readlink("/proc/self/exe", path.data(), path.size());
    if (n <= 0 || static_cast<std::size_t>(n) >= path.size())
        return {};
    path.resize(static_cast<std::size_t>(n));
    return path.substr(0, path.rfind('/') + 1);
}

struct Loaded {
    const GdalBackend* backend = nullptr;
    std::string error;
};

Loaded Load() {
    Loaded out;
    const std::string folder = ExecutableFolder();
    std::vector<std::string> candidates;
    if (const char* chosen = std::getenv("SATWALK_GDAL_MODULE"); chosen != nullptr && *chosen) {
        candidates.push_back(chosen);  // the only place looked at
    } else {
        if (!folder.empty()) {
            candidates.push_back(folder + kModuleName);                      // the build tree
            candidates.push_back(folder + "../lib/satwalk/" + kModuleName);  // installed
        }
#ifdef SATWALK_GDAL_MODULE_BUILT
        candidates.push_back(SATWALK_GDAL_MODULE_BUILT);  // tests and tools in their own folders
#endif
    }
    for (const std::string& path : candidates) {
        if (::access(path.c_str(), F_OK) != 0)
            continue;
        // Never closed: its projections may be held anywhere until exit.
        void* module = ::dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (module == nullptr) {
            const char* why = ::dlerror();
            out.error = why != nullptr ? why : path + " cannot be opened";
            return out;
        }
        auto entry = reinterpret_cast<GdalEntry>(::dlsym(module, kGdalEntryPoint));
        out.backend = entry != nullptr ? entry(kGdalBackendVersion) : nullptr;
        if (out.backend == nullptr)
            out.error = path + " is not this version's GDAL module";
        return out;
    }
    out.error = candidates.size() == 1
                    ? candidates[0] + " was not found"
                    : std::string(kModuleName) + " was not found beside the program";
    return out;
}

}  // namespace

const GdalBackend* GdalLibrary(std::string* error) {
    static std::once_flag once;
    static Loaded loaded;
    std::call_once(once, [] { loaded = Load(); });
    if (loaded.backend == nullptr && error != nullptr)
        *error = loaded.error;
    return loaded.backend;
}

std::string GdalUnavailableMessage(const std::string& reason) {
    return "Georeferenced and very large maps need GDAL, which cannot be loaded: " + reason;
}

}  // namespace satwalk::map
