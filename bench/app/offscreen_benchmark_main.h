// The main() of the window benchmarks: one offscreen QApplication that lives exactly as long
// as the benchmarks. An application kept in a function-local static would be destroyed after
// Qt's own globals and crash at exit.
#pragma once

#include <benchmark/benchmark.h>

#include <QApplication>

#include "common/large_allocation.h"

#define SYLVORA_OFFSCREEN_BENCHMARK_MAIN()                            \
  int main(int argc, char** argv) {                                   \
    sylvora::UseReturnableLargeBlocks();                              \
    qputenv("QT_QPA_PLATFORM", "offscreen");                          \
    QApplication application(argc, argv);                             \
    benchmark::Initialize(&argc, argv);                               \
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1; \
    benchmark::RunSpecifiedBenchmarks();                              \
    benchmark::Shutdown();                                            \
    return 0;                                                         \
  }
