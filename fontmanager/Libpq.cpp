#include "fontmanager/Libpq.h"

#include "fontmanager/CatalogError.h"

#include <dlfcn.h>

#include <string>

namespace Vellumine {

namespace {

const char* const libraryName = "libpq.so.5";

Libpq load() {
    void* handle = ::dlopen(libraryName, RTLD_NOW | RTLD_LOCAL);
    if (handle == nullptr) {
        const char* why = ::dlerror();
        throw CatalogError(std::string("PostgreSQL libraries need ") + libraryName +
                           " (Debian's libpq5), which cannot be loaded: " +
                           (why != nullptr ? why : "unknown reason"));
    }
    Libpq functions;
#define VELLUMINE_LIBPQ_RESOLVE(name)                                                              \
    functions.name = reinterpret_cast<decltype(functions.name)>(::dlsym(handle, #name));           \
    if (functions.name == nullptr)                                                                 \
        throw CatalogError(std::string(libraryName) + " lacks " #name);
    VELLUMINE_LIBPQ_FUNCTIONS(VELLUMINE_LIBPQ_RESOLVE)
#undef VELLUMINE_LIBPQ_RESOLVE
    // Never closed: the process keeps using it until it ends.
    return functions;
}

} // namespace

const Libpq& libpq() {
    static const Libpq functions = load();
    return functions;
}

} // namespace Vellumine
