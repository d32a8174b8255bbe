// Measures how many microseconds the dynamic linker takes to load a library and its dependencies: load LIBRARY

#include <dlfcn.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <vector>

int main(int count, char** arguments)
{
    if (count != 2) {
        std::fprintf(stderr, "usage: load LIBRARY\n");
        return 2;
    }
    constexpr std::size_t loads = 201;
    std::vector<double> times;
    while (times.size() < loads) {
        const auto start = std::chrono::steady_clock::now();
        void* const library = dlopen(arguments[1], RTLD_NOW | RTLD_LOCAL);
        const std::chrono::duration<double, std::micro> time = std::chrono::steady_clock::now() - start;
        if (!library) {
            std::fprintf(stderr, "load: %s\n", dlerror());
            return 1;
        }
        times.push_back(time.count());
        dlclose(library);
        if (dlopen(arguments[1], RTLD_NOW | RTLD_NOLOAD)) {
            std::fprintf(stderr, "load: %s stays loaded, so a second load would take no time\n", arguments[1]);
            return 1;
        }
    }
    std::nth_element(times.begin(), times.begin() + loads / 2, times.end());
    std::printf("%.1f\n", times[loads / 2]);
}
