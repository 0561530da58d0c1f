#pragma once

#include <cstdio>
#include <string>
#include <string_view>
#include <type_traits>

#include "simulation/dice.hpp"

namespace tamo::simulation {

/// What happened in a run, a line each: the virtual time, who, what. Kept only when asked for, since most
/// runs are never read; keeping it changes nothing of the run.
class Trace {
 public:
  explicit Trace(bool kept) : kept_(kept) {}

  [[nodiscard]] bool kept() const { return kept_; }
  [[nodiscard]] const std::string& text() const { return text_; }

  template <class... Parts>
  void note(Time at, std::string_view who, const Parts&... what) {
    if (!kept_) return;
    begin(at, who);
    (append(what), ...);
    text_ += '\n';
  }

 private:
  void begin(Time at, std::string_view who) {
    char clock[32];
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(at).count();
    const int size =
        std::snprintf(clock, sizeof clock, "%4lld.%06lld ", static_cast<long long>(micros / 1000000),
                      static_cast<long long>(micros % 1000000));
    text_.append(clock, static_cast<std::size_t>(size)).append(who).append("  ");
  }
  template <class Part>
  void append(const Part& part) {
    if constexpr (std::is_same_v<Part, bool>) {
      text_ += part ? "yes" : "no";
    } else if constexpr (std::is_arithmetic_v<Part>) {
      text_ += std::to_string(part);
    } else {
      text_ += part;
    }
  }

  bool kept_;
  std::string text_;
};

}  // namespace tamo::simulation
