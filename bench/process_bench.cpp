/*
** bench/process_bench.cpp: whole praxa commands as a person runs them, each iteration a
** new process (posix_spawn and wait): start-up, loading the plug-in, the analysis, its
** dialogs and writing the plots. `childCpuMs` is the processes' own CPU time (user and
** system) per run, steadier than the wall time on a busy machine.
*/
#include <fcntl.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

extern char **environ;

namespace {

double childCpuSeconds()
{
    struct rusage usage;
    getrusage(RUSAGE_CHILDREN, &usage);
    return (double)usage.ru_utime.tv_sec + (double)usage.ru_stime.tv_sec +
           1e-6 * (double)(usage.ru_utime.tv_usec + usage.ru_stime.tv_usec);
}

/* Runs praxa with `arguments`, its standard output thrown away; false unless it exits 0. */
bool runPraxa(const std::vector<std::string> &arguments)
{
    std::vector<char *> argv{const_cast<char *>(PRAXA_EXE)};
    for (const std::string &a : arguments)
        argv.push_back(const_cast<char *>(a.c_str()));
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
    pid_t child = 0;
    int failed = posix_spawn(&child, PRAXA_EXE, &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    int status = 0;
    return !failed && waitpid(child, &status, 0) == child && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

/* `praxa examples/servo.json bode`: Arg 0 writes into a folder that already holds the same
** plots (a command run again), Arg 1 into an empty folder each time. */
void servoBode(benchmark::State &state)
{
    std::filesystem::path folder = std::filesystem::temp_directory_path() / ("praxa-process-bench-" + std::to_string(getpid()));
    std::filesystem::create_directories(folder);
    std::string out = (folder / "out").string();
    std::vector<std::string> arguments{"--settings", (folder / "tervan.ini").string(), "--out", out,
                                       PRAXA_SOURCE_DIR "/examples/servo.json", "bode"};
    std::filesystem::create_directories(out);
    if (!runPraxa(arguments))
        state.SkipWithError("praxa did not run the servo's bode");
    double cpuBefore = childCpuSeconds();
    for (auto _ : state) {
        if (state.range(0) == 1) {
            state.PauseTiming();
            std::filesystem::remove_all(out);
            std::filesystem::create_directories(out);
            state.ResumeTiming();
        }
        if (!runPraxa(arguments)) {
            state.SkipWithError("praxa failed");
            break;
        }
    }
    state.counters["childCpuMs"] = benchmark::Counter(1e3 * (childCpuSeconds() - cpuBefore) / (double)state.iterations());
    std::filesystem::remove_all(folder);
}

}

BENCHMARK(servoBode)->Arg(0)->Arg(1)->UseRealTime()->Unit(benchmark::kMillisecond);

BENCHMARK_MAIN();
