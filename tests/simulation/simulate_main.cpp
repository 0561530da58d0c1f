#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>

#include "simulation/simulator.hpp"

namespace {

using tamo::simulation::Report;
using tamo::simulation::Simulator;
using tamo::simulation::Time;

/// The seed that a crash is reported with.
volatile std::uint64_t seedAtWork = 0;

extern "C" void reportCrash(int signal) {
  char text[96];
  const int size = std::snprintf(text, sizeof text, "signal %d in seed %llu\n", signal,
                                 static_cast<unsigned long long>(seedAtWork));
  static_cast<void>(!write(STDERR_FILENO, text, static_cast<std::size_t>(size)));
  std::signal(signal, SIG_DFL);
  std::raise(signal);
}

std::optional<std::uint64_t> number(const char* text) {
  std::uint64_t value = 0;
  const auto* end = text + std::strlen(text);
  const auto [stopped, error] = std::from_chars(text, end, value);
  return error == std::errc() && stopped == end ? std::optional(value) : std::nullopt;
}

struct Sum {
  std::uint64_t runs = 0;
  std::uint64_t broken = 0;
  Time simulated{0};
  std::map<std::string, std::uint64_t> met;
};

void add(Sum& sum, const Report& report) {
  ++sum.runs;
  sum.simulated += report.simulated;
  for (const auto& [name, times] : report.met)
    sum.met[name] += times;
  if (report.violations.empty()) return;
  ++sum.broken;
  for (const auto& violation : report.violations) {
    std::printf("seed %llu: %s: %s: %s (%s)\n", static_cast<unsigned long long>(report.seed),
                violation.who.c_str(), std::string(nameOf(violation.invariant)).c_str(),
                violation.detail.c_str(), std::string(sentenceOf(violation.invariant)).c_str());
  }
}

void print(const Sum& sum, std::uint64_t first, double seconds) {
  for (const auto& [name, times] : sum.met)
    std::printf("  %12llu  %s\n", static_cast<unsigned long long>(times), name.c_str());
  const double simulated = std::chrono::duration<double>(sum.simulated).count();
  std::printf("%llu runs, seeds %llu to %llu, %llu with a broken invariant\n",
              static_cast<unsigned long long>(sum.runs), static_cast<unsigned long long>(first),
              static_cast<unsigned long long>(first + sum.runs - 1),
              static_cast<unsigned long long>(sum.broken));
  std::printf("%.0f runs a second; %.0f s simulated in %.1f s, %.0f : 1\n",
              static_cast<double>(sum.runs) / seconds, simulated, seconds, simulated / seconds);
}

}  // namespace

/// simulate RUNS [SEED]: that many runs, with the seeds from SEED (1) on. A single run shows its trace.
int main(int argc, char** argv) {
  const auto runs = argc > 1 ? number(argv[1]) : std::nullopt;
  const auto first = argc > 2 ? number(argv[2]) : std::optional<std::uint64_t>(1);
  if (argc > 3 || !runs || !first || *runs == 0) {
    std::fprintf(stderr, "use: simulate RUNS [SEED]\n");
    return 2;
  }
  std::signal(SIGABRT, reportCrash);
  std::signal(SIGSEGV, reportCrash);
  Simulator simulator;
  Sum sum;
  const auto begun = std::chrono::steady_clock::now();
  for (std::uint64_t seed = *first; seed < *first + *runs && sum.broken < 20; ++seed) {
    seedAtWork = seed;
    const auto report = simulator.run(seed, {.traced = *runs == 1});
    std::fputs(report.trace.c_str(), stdout);
    add(sum, report);
  }
  print(sum, *first, std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  return sum.broken == 0 ? 0 : 1;
}
