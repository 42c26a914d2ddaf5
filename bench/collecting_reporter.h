// Shared by the benchmarks that print a table of our time beside a peer's: a reporter that keeps
// each run's real time (milliseconds) by name while printing the usual console output.
#pragma once

#include <benchmark/benchmark.h>

#include <map>
#include <string>
#include <vector>

namespace vrc::bench {

class CollectingReporter : public benchmark::ConsoleReporter {
 public:
  void ReportRuns(const std::vector<Run> &runs) override {
    for (const Run &run : runs) m_ms[run.benchmark_name()] = run.GetAdjustedRealTime();
    ConsoleReporter::ReportRuns(runs);
  }
  double ms(const std::string &name) const {
    const auto found = m_ms.find(name);
    return found == m_ms.end() ? 0.0 : found->second;
  }

 private:
  std::map<std::string, double> m_ms;
};

}  // namespace vrc::bench
