// Entry point of the benchmark suite. SystemC prints a banner on first use
// unless told not to; it would land in the middle of the console report.
#include <benchmark/benchmark.h>

#include <cstdlib>

#ifdef FIXEDPOINT_BENCH_SYSTEMC
// The SystemC library refers to the simulation entry point even when only
// its data types are used; the suite never starts a simulation.
extern "C" int sc_main(int, char*[])
{
    return 0;
}
#endif

int main(int argc, char** argv)
{
    setenv("SYSTEMC_DISABLE_COPYRIGHT_MESSAGE", "1", 0);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
