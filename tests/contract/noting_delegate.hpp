#pragma once

#include <functional>
#include <string>
#include <vector>

#include "platform/application.hpp"

namespace tamo::contract {

/// Notes what a main loop brings, in order, and does what the test asks for at each delivery.
class NotingDelegate final : public platform::ApplicationDelegate {
 public:
  std::function<void()> atLaunch = [] {};
  std::function<void()> atURLs = [] {};
  /// "launched", and "open" with the URLs behind it.
  std::vector<std::string> notes;

  void applicationDidFinishLaunching() override {
    notes.emplace_back("launched");
    atLaunch();
  }
  void application(const std::vector<std::string>& open) override {
    std::string note = "open";
    for (const auto& url : open)
      note += " " + url;
    notes.push_back(note);
    atURLs();
  }
};

}  // namespace tamo::contract
