#include <algorithm>
#include <charconv>
#include <chrono>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <limits>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

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

/// The seeds to play, of which there are some.
struct Order {
  std::uint64_t runs = 0;
  std::uint64_t first = 1;
  /// Whether nobody asked for more than this one.
  bool single = false;
};

/// What one processor of several plays.
std::optional<Order> shareOf(const Order& whole, std::uint64_t share, std::uint64_t shares) {
  if (share >= shares || shares > whole.runs) return std::nullopt;
  const auto each = whole.runs / shares;
  const auto more = whole.runs % shares;
  return Order{.runs = each + (share < more ? 1 : 0),
               .first = whole.first + each * share + std::min(share, more)};
}

/// Absent when that many seeds do not follow the first.
std::optional<Order> orderIn(const std::vector<std::uint64_t>& numbers) {
  const auto count = numbers.size();
  if (count != 1 && count != 2 && count != 4) return std::nullopt;
  const Order whole{.runs = numbers[0], .first = count > 1 ? numbers[1] : 1, .single = numbers[0] == 1};
  if (whole.runs == 0) return std::nullopt;
  if (whole.runs - 1 > std::numeric_limits<std::uint64_t>::max() - whole.first) return std::nullopt;
  return count == 4 ? shareOf(whole, numbers[2], numbers[3]) : whole;
}

/// Absent when a word is no number.
std::optional<Order> orderIn(int argc, char** argv) {
  std::vector<std::uint64_t> numbers;
  for (int word = 1; word < argc; ++word) {
    const auto value = number(argv[word]);
    if (!value) return std::nullopt;
    numbers.push_back(*value);
  }
  return orderIn(numbers);
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

void print(const Sum& sum, std::uint64_t first) {
  for (const auto& [name, times] : sum.met)
    std::printf("  %12llu  %s\n", static_cast<unsigned long long>(times), name.c_str());
  std::printf("%llu runs, seeds %llu to %llu, %llu with a broken invariant\n",
              static_cast<unsigned long long>(sum.runs), static_cast<unsigned long long>(first),
              static_cast<unsigned long long>(first + sum.runs - 1),
              static_cast<unsigned long long>(sum.broken));
}

void printSpeed(const Sum& sum, double seconds) {
  const double simulated = std::chrono::duration<double>(sum.simulated).count();
  std::printf("%.0f runs a second; %.0f s simulated in %.1f s, %.0f : 1\n",
              static_cast<double>(sum.runs) / seconds, simulated, seconds, simulated / seconds);
}

}  // namespace

/// simulate RUNS [SEED [SHARE SHARES]]: that many runs, with the seeds from SEED (1) on, or one share of them, counted from
/// 0. A single run shows its trace, and nothing that differs from one time to the next.
int main(int argc, char** argv) {
  const auto order = orderIn(argc, argv);
  if (!order) {
    std::fputs("use: simulate RUNS [SEED [SHARE SHARES]]; the last seed is below 2^64\n", stderr);
    return 2;
  }
  std::signal(SIGABRT, reportCrash);
  std::signal(SIGSEGV, reportCrash);
  Simulator simulator;
  Sum sum;
  const auto begun = std::chrono::steady_clock::now();
  for (std::uint64_t run = 0; run < order->runs && sum.broken < 20; ++run) {
    seedAtWork = order->first + run;
    const auto report = simulator.run(order->first + run, {.traced = order->single});
    std::fputs(report.trace.c_str(), stdout);
    add(sum, report);
  }
  print(sum, order->first);
  if (!order->single)
    printSpeed(sum, std::chrono::duration<double>(std::chrono::steady_clock::now() - begun).count());
  return sum.broken == 0 ? 0 : 1;
}
