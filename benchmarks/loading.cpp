// Loading the library into a program that has Qt.

#include "ways.h"

#include <QtGlobal>

#include <cstdio>
#include <cstdlib>

#include <dlfcn.h>

namespace tarn::benchmarks {
namespace {

/// Loads a library; that it goes again does not count.
Way loading(const char* name, const char* file)
{
    return {"loading", name, [file](std::uint64_t times) {
                for (; times != 0; --times) {
                    void* library = nullptr;
                    {
                        const Measured measured;
                        library = ::dlopen(file, RTLD_NOW);
                    }
                    if (!library || ::dlclose(library) != 0 || ::dlopen(file, RTLD_NOW | RTLD_NOLOAD)) {
                        std::fprintf(stderr, "%s cannot be loaded and unloaded\n", file);
                        std::abort();
                    }
                }
            }};
}

} // namespace

std::vector<Way> allWays()
{
    consume(qVersion()); // this program has Qt
    return {loading("library", TARN_LIBRARY), loading("what it stands on", TARN_DEVICES)};
}

} // namespace tarn::benchmarks
