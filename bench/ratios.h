// Prints the ratios of benchmarks to each other, beside what is aimed at.
#ifndef MARLUNE_BENCH_RATIOS_H
#define MARLUNE_BENCH_RATIOS_H

#include <algorithm>
#include <cstdio>
#include <map>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>

/// What one run is for: times of benchmarks as ratios. (numerator - deducted) / denominator, each the fastest of its
/// repetitions; a deducted benchmark is work that is not ours.
struct CRatio {
    std::string m_What;
    std::string m_Numerator;
    std::string m_Deducted; // or empty
    std::string m_Denominator;
    double m_Aim; // at most
};

/// Prints as the console does, and keeps the fastest time of each benchmark.
class CFastestReporter : public benchmark::ConsoleReporter {
public:
    CFastestReporter() : ConsoleReporter(OO_Tabular) {}

    void ReportRuns(const std::vector<Run>& runs) override {
        for (const Run& run : runs) {
            if (run.run_type == Run::RT_Iteration && !run.error_occurred) {
                const double seconds = run.GetAdjustedRealTime() / GetTimeUnitMultiplier(run.time_unit);
                const auto known = m_Fastest.emplace(run.run_name.function_name + Arguments(run), seconds).first;
                known->second = std::min(known->second, seconds);
            }
        }
        ConsoleReporter::ReportRuns(runs);
    }

    std::map<std::string, double> m_Fastest; // seconds

private:
    static double GetTimeUnitMultiplier(benchmark::TimeUnit unit) { return benchmark::GetTimeUnitMultiplier(unit); }
    static std::string Arguments(const Run& run) { return run.run_name.args.empty() ? "" : "/" + run.run_name.args; }
};

/// Runs the benchmarks, interleaved as the command line says, and prints the ratios. Nothing fails on a slow machine.
inline int RunAndCompare(int argc, char** argv, const std::vector<CRatio>& ratios) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    CFastestReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();
    std::printf("\n%-72s %8s %8s\n", "ratio", "measured", "aim");
    for (const CRatio& ratio : ratios) {
        if (reporter.m_Fastest.count(ratio.m_Numerator) == 0 || reporter.m_Fastest.count(ratio.m_Denominator) == 0) {
            continue; // filtered out
        }
        const auto time = [&](const std::string& name) { return name.empty() ? 0.0 : reporter.m_Fastest[name]; };
        const double measured = (time(ratio.m_Numerator) - time(ratio.m_Deducted)) / time(ratio.m_Denominator);
        std::printf("%-72s %8.2f %8.2f\n", ratio.m_What.c_str(), measured, ratio.m_Aim);
    }
    return 0;
}

#endif
