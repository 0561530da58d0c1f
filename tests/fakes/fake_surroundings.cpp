#include "fakes/fake_surroundings.hpp"

#include "platform/log_text.hpp"

namespace tamo::fakes {
namespace {

using platform::LogPiece;

class FakeLogger final : public platform::Logger {
 public:
  FakeLogger(Ledger& ledger, const FakeClock& clock) : ledger_(ledger), clock_(clock) {}

  void write(const platform::LogLine& line) override {
    const bool error = platform::levelOf(line.format) == platform::LogLevel::Error;
    std::string text = error ? "log: error " : "log: default ";
    for (const auto& piece : platform::pieces(line)) {
      text += piece.part == platform::LogPart::Private ? "<private:" + piece.text + ">" : piece.text;
    }
    ledger_.note(clock_.monotonicNow(), text);
  }

 private:
  Ledger& ledger_;
  const FakeClock& clock_;
};

}  // namespace

std::unique_ptr<platform::Logger> FakeLogSystem::logger(const std::string& subsystem,
                                                        const std::string& category) {
  ledger_.note(clock_.monotonicNow(), "logger: " + subsystem + " " + category);
  return std::make_unique<FakeLogger>(ledger_, clock_);
}

}  // namespace tamo::fakes
