#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "platform/stage/stage_root.hpp"

namespace tamo::stage {

/// The URLs that a text holds, one a line; empty lines are none.
[[nodiscard]] std::vector<std::string> urlsIn(std::string_view lines);

/// Where a running companion is handed URLs: a listening stream socket "companions/PID.sock" in the control
/// room. A sender writes one URL a line; what it wrote is one delivery, complete when it closes. Never
/// blocks. One thread.
class UrlInbox {
 public:
  /// Stops the process (fatal) when the socket cannot be made.
  explicit UrlInbox(const StageRoot& root);
  UrlInbox(const UrlInbox&) = delete;
  UrlInbox& operator=(const UrlInbox&) = delete;
  /// Removes the socket. One that a killed process left behind refuses connections.
  ~UrlInbox();

  /// The host path of the socket.
  [[nodiscard]] const std::string& path() const { return path_; }

  /// What to wait on: when one of them can be read, receive() has something to do.
  [[nodiscard]] std::vector<int> descriptors() const;

  /// Takes what has arrived and gives the deliveries that are complete, each with one URL at least.
  [[nodiscard]] std::vector<std::vector<std::string>> receive();

 private:
  struct Sender {
    platform::Descriptor connection;
    std::string text;
    bool finished = false;
  };
  void acceptSenders();
  static void readFrom(Sender& sender);

  std::string path_;
  platform::Descriptor listener_;
  std::vector<Sender> senders_;
};

}  // namespace tamo::stage
