#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>
#include <gtest/gtest.h>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

#include "platform/posix/posix_files.hpp"
#include "soak/clock_hand.hpp"
#include "soak/crowd_rounds.hpp"
#include "soak/identity.hpp"
#include "soak/lanes.hpp"
#include "soak/move_rounds.hpp"
#include "soak/own_world.hpp"
#include "soak/stop_rounds.hpp"
#include "soak/tool_rounds.hpp"

namespace tamo::soak {
namespace {

struct Order {
  int rounds = 200;
  std::uint64_t seed = 1;
  int lanes = 8;
  std::string only;
  bool canaries = false;
  bool setClock = false;
};

const std::vector<std::string> allParts = {"stops", "crowds", "tools", "moves", "identity"};

bool wanted(const Order& order, const std::string& part) {
  return order.only.empty() || order.only == part;
}

void playStops(const Order& order, const std::string& file) {
  inLanes(order.lanes, order.seed, file, [&](Lane& lane) {
    StopRounds stops(lane.tally, lane.chance);
    const auto kinds = static_cast<int>(StopRounds::shapes() + StopRounds::variants());
    lane.each(order.rounds, [&](int round) {
      const auto kind = static_cast<std::size_t>(round % kinds);
      if (kind < StopRounds::shapes()) return stops.coreRound(kind);
      stops.playedRound(kind - StopRounds::shapes());
    });
  });
}

/// A crowd keeps the machine busy by itself.
void playCrowds(const Order& order, const std::string& file) {
  inLanes(2, order.seed + 1, file, [&](Lane& lane) {
    CrowdRounds crowds(lane.tally, lane.chance);
    lane.each(std::max(2, order.rounds / 50), [&](int) { crowds.killedCrowd(); });
    lane.each(std::max(static_cast<int>(CrowdRounds::ways()), order.rounds / 20),
              [&](int round) { crowds.disturbedCrowd(static_cast<std::size_t>(round)); });
  });
}

void playMoves(const Order& order, const std::string& file) {
  inLanes(order.lanes, order.seed + 2, file, [&](Lane& lane) {
    MoveRounds moves(lane.tally, lane.chance);
    lane.each(order.rounds, [&](int) { moves.round(); });
  });
}

void playTools(const Order& order, const std::string& file) {
  inLanes(order.lanes, order.seed, file, [&](Lane& lane) {
    const auto cases = static_cast<int>(toolCases());
    lane.each(cases * std::max(1, order.rounds / 200),
              [&](int round) { playTool(lane.tally, static_cast<std::size_t>(round)); });
  });
}

void playAll(const Order& order, const std::string& file) {
  if (wanted(order, "stops")) playStops(order, file);
  if (wanted(order, "crowds")) playCrowds(order, file);
  if (wanted(order, "tools")) playTools(order, file);
  if (wanted(order, "moves")) playMoves(order, file);
  if (wanted(order, "identity"))
    inLanes(2, order.seed, file, [&](Lane& lane) { reusePids(lane.tally, order.rounds * 10); });
}

/// A fault that is planted on purpose must be found in the account.
struct Canary {
  std::string name;
  std::string found;
  void (*plant)(Lane& lane);
};

/// Planted among real processes, which may come too late on a busy machine: a stranger has to lead its group before
/// the signal is sent, for one. So a fault is planted up to five times, until it is found once.
bool isFound(const Canary& canary, const Order& order, const std::string& file) {
  for (int planting = 0; planting < 5; ++planting) {
    ::unlink(file.c_str());
    inLanes(1, order.seed, file, canary.plant);
    const auto account = accountOf(platform::posix::readWhole(file).value_or(""));
    const auto tells = [&](const auto& what) { return what.contains(canary.found); };
    if (std::ranges::any_of(account.wrongs, tells)) return true;
    std::printf("%s", shown(account).c_str());
  }
  return false;
}

int playCanaries(const Order& order, const std::string& file) {
  const std::vector<Canary> canaries = {
      {"two at once at the lock", "overlaps",
       [](Lane& lane) { CrowdRounds(lane.tally, lane.chance).canary(); }},
      {"a copy that is lost", "the moved copy is lost",
       [](Lane& lane) { MoveRounds(lane.tally, lane.chance).canary(); }},
      {"a stranger that is hit", "a stranger with the Core's pid was killed",
       [](Lane& lane) { StopRounds(lane.tally, lane.chance).canary(); }},
      {"a Core that is hit", "the Core was hit", [](Lane& lane) { toolCanary(lane.tally); }},
      {"a look that knows no start times", "is taken for the first process",
       [](Lane& lane) { identityCanary(lane.tally); }},
  };
  int missed = 0;
  for (const auto& canary : canaries) {
    const bool found = isFound(canary, order, file);
    std::printf("canary, %s: %s\n", canary.name.c_str(), found ? "found" : "MISSED");
    if (!found) ++missed;
  }
  return missed == 0 ? 0 : 1;
}

int soak(const Order& order, const ClockHand* hand) {
  std::string file = "/tmp/tamo-soak-XXXXXX";
  ::close(::mkstemp(file.data()));
  if (order.canaries) {
    const int status = playCanaries(order, file);
    ::unlink(file.c_str());
    return status;
  }
  std::printf("seed %llu, %d rounds, %d lanes\n", static_cast<unsigned long long>(order.seed), order.rounds,
              order.lanes);
  std::fflush(stdout);
  const auto begun = Clock::now();
  playAll(order, file);
  if (hand != nullptr) Tally(file).count("settings of the machine's clock", hand->settings());
  auto account = accountOf(platform::posix::readWhole(file).value_or(""));
  ::unlink(file.c_str());
  if (account.counts.empty()) account.wrongs.push_back("nothing was done");
  std::fputs(shown(account).c_str(), stdout);
  std::printf("%.0f s\n", std::chrono::duration<double>(Clock::now() - begun).count());
  std::fflush(stdout);
  return account.wrongs.empty() ? 0 : 1;
}

template <class Number>
bool read(const char* text, Number& value) {
  const auto* end = text + std::strlen(text);
  const auto [stopped, error] = std::from_chars(text, end, value);
  return error == std::errc() && stopped == end && value > 0;
}

std::optional<Order> orderIn(int argc, char** argv) {
  Order order;
  int numbers = 0;
  for (int i = 1; i < argc; ++i) {
    const std::string word = argv[i];
    if (word == "--canaries") {
      order.canaries = true;
    } else if (word == "--set-clock") {
      order.setClock = true;
    } else if (word == "--only" && i + 1 < argc) {
      order.only = argv[++i];
      if (std::ranges::find(allParts, order.only) == allParts.end()) return std::nullopt;
    } else if (word == "--lanes" && i + 1 < argc) {
      if (!read(argv[++i], order.lanes)) return std::nullopt;
    } else if (++numbers == 1) {
      if (!read(argv[i], order.rounds)) return std::nullopt;
    } else if (numbers != 2 || !read(argv[i], order.seed)) {
      return std::nullopt;
    }
  }
  return order;
}

int play(const Order& order) {
  const auto hand = order.setClock ? ClockHand::start(order.seed) : std::nullopt;
  if (order.setClock && !hand) {
    std::fprintf(stderr, "the machine's clock may not be set here\n");
    return 77;
  }
  return inOwnWorld([&] { return soak(order, hand ? &*hand : nullptr); });
}

}  // namespace
}  // namespace tamo::soak

/// soak [ROUNDS] [SEED] [--lanes N] [--only PART] [--set-clock] | --canaries
int main(int argc, char** argv) {
  const auto order = tamo::soak::orderIn(argc, argv);
  if (!order) {
    std::fprintf(stderr, "use: soak [ROUNDS] [SEED] [--lanes N] [--only PART] [--set-clock] | --canaries\n");
    return 2;
  }
  ::testing::InitGoogleTest();
  return tamo::soak::play(*order);
}
