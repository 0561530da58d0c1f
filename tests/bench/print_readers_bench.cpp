#include <benchmark/benchmark.h>
#include <cstring>
#include <string>
#include <utility>

#include "hardstop/process_snapshot.hpp"
#include "launch/launch_job.hpp"
#include "launch/print_reading.hpp"

/// The three readers of a launchctl print, in bytes per second on prints of growing size, beside memchr over
/// the same lines. The two that count blocks are also timed as the product asks them, behind the step that leaves
/// quoted blocks out, on prints without such a block and on prints with many. No reader may stop early, so the job's
/// own pid stands at the very end.
namespace tamo {
namespace {

const std::string coalition =
    "\n\tresource coalition = {\n\t\tID = 1140\n\t\ttype = resource\n\t\tstate = active\n\t\tactive count = "
    "1\n"
    "\t\tname = studio.pell.tamo.core\n\t}\n\n\tspawn type = daemon (3)\n\tjetsam priority = 40\n"
    "\tjetsam memory limit (active) = (unlimited)\n\tchecked allocations = 0 (queried = 1)\n"
    "\tlast exit code = (never exited)\n\tenvironment = {\n\t\tPATH => /usr/bin:/bin:/usr/sbin:/sbin\n\t}\n";

const std::string trigger =
    "\tevent triggers = {\n\t\tstudio.pell.tamo => {\n\t\t\tdescriptor = {\n\t\t\t\t\"NonRepeatingTask\" => "
    "{\n"
    "\t\t\t\t\t\"TrySchedulingBefore\" => 86400\n\t\t\t\t}\n\t\t\t}\n\t}\n";

std::string printOf(std::size_t bytes, const std::string& block = coalition) {
  std::string text =
      "gui/501/studio.pell.tamo.core = {\n\targuments = {\n\t\t/core\n\t\t--serve\n\t}\n\texit timeout = "
      "20\n";
  while (text.size() < bytes)
    text += block;
  return text + "\tpid = 4242\n}\n";
}

void reports(benchmark::State& state, const std::string& text) {
  state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations()) *
                          static_cast<std::int64_t>(text.size()));
  state.SetComplexityN(static_cast<std::int64_t>(text.size()));
}

void memchrOverLines(benchmark::State& state) {
  const auto text = printOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    std::size_t lines = 0;
    const char* at = text.data();
    const char* const end = at + text.size();
    while (const void* found = std::memchr(at, '\n', static_cast<std::size_t>(end - at))) {
      at = static_cast<const char*>(found) + 1;
      ++lines;
    }
    benchmark::DoNotOptimize(lines);
  }
  reports(state, text);
}

void loosePidReader(benchmark::State& state) {
  const PrintResult print{.code = 0, .text = printOf(static_cast<std::size_t>(state.range(0)))};
  for (auto _ : state)
    benchmark::DoNotOptimize(jobRunning(print));
  reports(state, *print.text);
}

void strictPidReader(benchmark::State& state) {
  const auto text = printOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state)
    benchmark::DoNotOptimize(HardStop::pid(text));
  reports(state, text);
}

void strictPidReaderBehindTheStep(benchmark::State& state) {
  auto text = printOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    text = withoutQuotedBlocks(std::move(text));
    benchmark::DoNotOptimize(HardStop::pid(text));
  }
  reports(state, text);
}

void definitionReaderBehindTheStep(benchmark::State& state) {
  auto text = printOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state) {
    text = withoutQuotedBlocks(std::move(text));
    benchmark::DoNotOptimize(LaunchJob::loaded(text));
  }
  reports(state, text);
}

void stepOverQuotedBlocks(benchmark::State& state) {
  const auto text = printOf(static_cast<std::size_t>(state.range(0)), trigger);
  for (auto _ : state)
    benchmark::DoNotOptimize(withoutQuotedBlocks(text));
  reports(state, text);
}

void definitionReader(benchmark::State& state) {
  const auto text = printOf(static_cast<std::size_t>(state.range(0)));
  for (auto _ : state)
    benchmark::DoNotOptimize(LaunchJob::loaded(text));
  reports(state, text);
}

void sizes(benchmark::internal::Benchmark* bench) {
  bench->RangeMultiplier(16)->Range(1 << 12, 1 << 24)->Complexity(benchmark::oN);
}

BENCHMARK(memchrOverLines)->Apply(sizes);
BENCHMARK(loosePidReader)->Apply(sizes);
BENCHMARK(strictPidReader)->Apply(sizes);
BENCHMARK(definitionReader)->Apply(sizes);
BENCHMARK(strictPidReaderBehindTheStep)->Apply(sizes);
BENCHMARK(definitionReaderBehindTheStep)->Apply(sizes);
BENCHMARK(stepOverQuotedBlocks)->Apply(sizes);

}  // namespace
}  // namespace tamo
