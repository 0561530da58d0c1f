#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <poll.h>
#include <string>
#include <vector>

#include "platform/posix/descriptor.hpp"
#include "stage/launchd/job_table.hpp"

/// The askers of the stage's launchd: any number at once, none of which can block it. One thread.
namespace tamo::stage {

class LaunchdClients {
 public:
  using Reply = JobTable::Reply;
  /// Gets each question that has come in completely. The reply may be kept; it is good for nothing, and
  /// harmless, once its asker has hung up. It must not be called after this object is gone.
  using Handler = std::function<void(const std::vector<std::string>& words, const Reply& reply)>;

  /// `listening` is a listening socket that doesn't block.
  LaunchdClients(platform::Descriptor listening, Handler handler)
      : listening_(std::move(listening)), handler_(std::move(handler)) {}

  /// Adds what is to be polled, for serve() to be given afterwards.
  void addTo(std::vector<pollfd>& polled) const;
  void serve(const std::vector<pollfd>& polled);

  /// Takes no more questions and gives the answers that stand to askers that take them, for a second at most.
  void finish();

 private:
  struct Client {
    platform::Descriptor socket;
    std::string question;
    std::string answer;
    bool asked = false;
    bool answered = false;
  };

  void accept();
  void serveClient(std::uint64_t number, short events);
  /// False when the client is done with.
  bool read(std::uint64_t number, Client& client);
  static bool write(Client& client);
  void answer(std::uint64_t number, const LaunchdAnswer& answer);

  platform::Descriptor listening_;
  Handler handler_;
  /// Numbered, never named by descriptor: a late answer must not reach the next one that gets the descriptor.
  std::map<std::uint64_t, Client> clients_;
  std::uint64_t next_ = 0;
};

}  // namespace tamo::stage
