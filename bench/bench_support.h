/*
** bench/bench_support.h: what the benchmark programs share: a stand-in host with the
** plug-in linked in, a scratch folder, and a main that pins OpenBLAS to one thread
** and names the LAPACK library the figures are taken against.
*/
#ifndef PRAXA_BENCH_SUPPORT_H
#define PRAXA_BENCH_SUPPORT_H

#include <dlfcn.h>
#include <link.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include <benchmark/benchmark.h>

#include "hostapp/in_process_host.h"
#include "linearize/linearize.h"
#include "platform/driver.h"
#include "shell/praxa.h"

namespace bench {

/* A scratch folder for the files the host writes, removed at exit. */
struct TempFolder {
    std::string path;
    TempFolder()
    {
        char pattern[] = "/tmp/praxa-bench-XXXXXX";
        path = mkdtemp(pattern) ? pattern : "/tmp";
    }
    ~TempFolder()
    {
        if (path != "/tmp")
            std::filesystem::remove_all(path);
    }
};

/* A fresh host and windowing system with the plug-in's entry points, output into folder. */
inline void startHost(const std::string &folder)
{
    hostapp::startInProcessHost(folder + "/tervan.ini", folder);
}

/* The file of the loaded library whose name contains `part`, or "". */
inline std::string loadedLibrary(const char *part)
{
    struct Search {
        const char *part;
        std::string found;
    } search{part, ""};
    dl_iterate_phdr(
        [](dl_phdr_info *info, size_t, void *data) {
            auto *s = (Search *)data;
            if (info->dlpi_name && std::strstr(info->dlpi_name, s->part) && s->found.empty())
                s->found = std::filesystem::weakly_canonical(info->dlpi_name).string();
            return 0;
        },
        &search);
    return search.found;
}

/* OpenBLAS reads its thread count when it is loaded, before main: the program runs
** itself again with OPENBLAS_NUM_THREADS=1 unless that is set already. */
inline int run(int argc, char **argv)
{
    const char *threads = std::getenv("OPENBLAS_NUM_THREADS");
    if (!threads || std::strcmp(threads, "1") != 0) {
        setenv("OPENBLAS_NUM_THREADS", "1", 1);
        execv("/proc/self/exe", argv);
        return 1;
    }
    benchmark::AddCustomContext("lapack", loadedLibrary("/liblapack.so"));
    benchmark::AddCustomContext("blas", loadedLibrary("/libblas.so"));
    benchmark::AddCustomContext("OPENBLAS_NUM_THREADS", threads);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}

#define PRAXA_BENCHMARK_MAIN() \
    int main(int argc, char **argv) { return bench::run(argc, argv); }

#endif
