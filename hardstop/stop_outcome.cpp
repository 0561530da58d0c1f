#include "hardstop/stop_outcome.hpp"

namespace tamo::HardStop {
namespace {

/// The forms are read by people and searched for in logs, so they stay as they are.
std::string textOf(const std::string& name, const std::string& payload, bool gone) {
  return name + "(" + payload + ", gone: " + (gone ? "true" : "false") + ")";
}

struct TextForm {
  std::string operator()(const Spared& outcome) const {
    return textOf("spared", "\"" + outcome.reason + "\"", outcome.gone);
  }
  std::string operator()(const KilledGroup& outcome) const {
    return textOf("killedGroup", std::to_string(outcome.group), outcome.gone);
  }
  std::string operator()(const KilledProcess& outcome) const {
    return textOf("killedProcess", std::to_string(outcome.pid), outcome.gone);
  }
  std::string operator()(const Exited& /*outcome*/) const { return "exited"; }
  std::string operator()(const Cancelled& /*outcome*/) const { return "cancelled"; }
};

}  // namespace

std::string text(const Outcome& outcome) {
  return std::visit(TextForm(), outcome);
}

}  // namespace tamo::HardStop
