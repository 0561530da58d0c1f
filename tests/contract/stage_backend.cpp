#include <unistd.h>

#include "contract/backend.hpp"
#include "contract/temporary_stage.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/stage/stage_host.hpp"
#include "platform/stage/stream_sockets.hpp"

namespace tamo::contract {
namespace {

constexpr auto companion =
    "/Applications/Tamo.app/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/Tamo Core";

class StageBackend final : public Backend {
 public:
  StageBackend() { stage_.folder(folder()); }

  [[nodiscard]] const platform::Platform& platform() const override { return host_.platform(); }
  [[nodiscard]] std::string folder() const override { return "/Users/tamo/test"; }
  [[nodiscard]] std::string host(const std::string& path) const override { return stage_.root().host(path); }
  [[nodiscard]] platform::Descriptor listen(const std::string& path) const override {
    return stage::listeningAt(host(path));
  }
  void outliveTerminate() override { stage_.root().set("terminate", "returns"); }
  void sendURLs(const std::vector<std::string>& urls) const override {
    const auto inbox = stage_.root().control("companions/" + std::to_string(::getpid()) + ".sock");
    const auto connection = stage::connectedTo(inbox);
    if (!connection) ADD_FAILURE() << "no inbox at " << inbox;
    for (const auto& url : urls)
      EXPECT_TRUE(platform::writeAll(connection.get(), url + "\n"));
  }

 private:
  TemporaryStage stage_;
  stage::StageHost host_{stage_.root(), stage_.root().host(companion)};
};

}  // namespace

std::vector<BackendKind> backends() {
  return {{.name = "Stage", .make = [] { return std::make_unique<StageBackend>(); }}};
}

}  // namespace tamo::contract
