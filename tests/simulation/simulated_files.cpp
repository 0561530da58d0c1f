#include "simulation/simulated_files.hpp"

#include <algorithm>

#include "simulation/job_texts.hpp"
#include "simulation/referee.hpp"

namespace tamo::simulation {
namespace {

class Output final : public platform::OutputFile {
 public:
  Output(World& world, int descriptor) : world_(world), descriptor_(descriptor) {}
  Output(const Output&) = delete;
  Output& operator=(const Output&) = delete;
  ~Output() override { world_.descriptors.erase(descriptor_); }
  [[nodiscard]] int descriptor() const override { return descriptor_; }

 private:
  World& world_;
  int descriptor_;
};

bool isMarker(std::string_view path) {
  return path.contains("core.db.revert");
}

bool isPrintFile(std::string_view path) {
  return path.contains("tamo-core-print-");
}

/// What the companion learns of the application around it.
void tellDefinition(Companion& companion, const std::string& path, const std::string* bytes) {
  if (path != companion.bundlePath() + std::string(Places::agentList)) return;
  companion.record.bundledDefinition = bytes == nullptr ? std::nullopt : definitionOf(*bytes);
}

void tellInfo(Companion& companion, const std::string& path, const std::string* bytes) {
  auto& record = companion.record;
  const auto version = bytes == nullptr ? std::nullopt : valueOf("CFBundleVersion", *bytes);
  if (path == std::string(Places::installed) + "/Contents/Info.plist") record.destinationVersion = version;
  if (path != companion.plan.copy + "/Contents/Info.plist") return;
  record.infoID = bytes == nullptr ? std::nullopt : valueOf("CFBundleIdentifier", *bytes);
  record.infoVersion = version;
  if (!record.dispatched || record.judged) return;
  record.judged = true;
  record.judgedID = record.infoID;
  record.judgedHomeKnown = record.homeKnown;
}

void tellPrint(Companion& companion, const std::string& path, const std::optional<std::string>& bytes) {
  if (isPrintFile(path)) companion.record.print = bytes ? toldBy(*bytes) : std::nullopt;
}

/// What was known of the job counts no longer.
void forgetPrint(Record& record) {
  record.print.reset();
  record.lastLook.reset();
  record.stopsBeforePrint = record.begunStops();
}

/// What a reader gets of a file that is not read as it is. No property list survives any of it.
std::optional<std::string> damaged(const std::string& bytes, Way way) {
  if (way == Way::Empty) return "";
  if (way == Way::Torn) return bytes.substr(0, bytes.size() / 2);
  if (way == Way::Garbage) return "{\n}\n";
  if (way == Way::Binary) return "\xff\xfe\x80";
  return std::nullopt;
}

std::string planted(Plant plant, std::string bytes) {
  const auto replaced = [&bytes](std::string_view from, std::string_view to) {
    const auto at = bytes.find(from);
    if (at != std::string::npos) bytes.replace(at, from.size(), to);
  };
  if (plant == Plant::WrongReceipt) replaced("\"status\" : 1", "\"status\" : 0");
  if (plant == Plant::WrongMoveResult) replaced("moved", "opened");
  return bytes;
}

/// What the companion is told of a marker.
bool tellMarker(Companion& companion, const std::string& path, bool there) {
  const auto planted = companion.world.planted;
  const bool told = there && planted != Plant::DeafToMarkers;
  const bool unasked = planted == Plant::MarkerUnasked && path.ends_with(".partial");
  if (!unasked) Referee::asksForMarker(companion, path, told);
  return told;
}

/// A write that is in two steps, so that a death between them shows.
void plantBeforeWriting(World& world, const std::string& path, const std::string& bytes) {
  if (world.planted == Plant::TornWrites) world.files.write(path, bytes.substr(0, bytes.size() / 2));
  if (world.planted == Plant::StrayFiles) world.files.write(path + ".part", bytes);
}

}  // namespace

bool SimulatedFiles::exists(const std::string& asked) const {
  const auto path = companion_.plantedPlace(asked);
  const bool fails = companion_.enter(Call::exists, path);
  const bool there = !fails && companion_.world.files.exists(path);
  companion_.note("exists ", path, ": ", there);
  if (isMarker(path)) return tellMarker(companion_, path, there);
  Referee::touches(companion_, Call::exists, path);
  if (path == Places::installed) companion_.record.destinationExists = there;
  return there;
}

std::optional<std::string> SimulatedFiles::readWhole(const std::string& path) const {
  const bool fails = companion_.enter(Call::readWhole, path);
  const auto way = companion_.way();
  Referee::touches(companion_, Call::readWhole, path);
  const auto* there = companion_.world.files.read(path);
  const auto* bytes = fails ? nullptr : there;
  tellInfo(companion_, path, bytes);
  tellDefinition(companion_, path, bytes);
  companion_.note("reads ", path, ": ", bytes != nullptr);
  auto told = bytes == nullptr ? std::nullopt : std::optional(*bytes);
  if (there != nullptr && fails) told = damaged(*there, way);
  tellPrint(companion_, path, told);
  if (companion_.world.planted == Plant::UnwatchedStop && isPrintFile(path)) return std::nullopt;
  return told;
}

std::string SimulatedFiles::resolvedPath(const std::string& path) const {
  const bool fails = companion_.enter(Call::resolvedPath, path);
  Referee::touches(companion_, Call::resolvedPath, path);
  return fails ? path : companion_.world.files.resolved(path);
}

bool SimulatedFiles::writeAtomically(const std::string& path, std::string_view bytes) {
  const auto& record = companion_.record;
  const bool receipt = path.contains("/TamoPKG1/");
  if (receipt && companion_.world.planted == Plant::LostReceipt) return true;
  const auto written = planted(companion_.world.planted, std::string(bytes));
  if (receipt) Referee::writesReceipt(companion_, path, written);
  if (path.ends_with("/move-to-applications.json")) Referee::recordsMove(companion_, written);
  plantBeforeWriting(companion_.world, path, written);
  const bool fails = companion_.enter(Call::writeAtomically, path);
  Referee::touches(companion_, Call::writeAtomically, path);
  if (isPrintFile(path)) forgetPrint(companion_.record);
  if (receipt) companion_.record.receiptDenied = record.receiptDenied || fails;
  companion_.note("writes ", path, ": ", !fails);
  if (isPrintFile(path)) companion_.record.printed = true;
  auto& tree = companion_.world.files;
  // A link in the place is replaced, not followed.
  if (!fails && tree.isLink(path)) tree.remove(path);
  if (!fails) tree.write(path, written);
  if (companion_.world.planted == Plant::StrayFiles) companion_.world.files.remove(path + ".part");
  return !fails;
}

bool SimulatedFiles::createDirectories(const std::string& path) {
  const bool fails = companion_.enter(Call::createDirectories, path);
  Referee::touches(companion_, Call::createDirectories, path);
  if (fails && path.contains("/TamoPKG1/")) companion_.record.receiptDenied = true;
  if (!fails) companion_.world.files.createFolder(path);
  return !fails;
}

bool SimulatedFiles::remove(const std::string& path) {
  auto& world = companion_.world;
  const bool print = isPrintFile(path);
  if (print && world.planted == Plant::PrintFileLeft) return true;
  if (companion_.enterQuietly(Call::remove, path)) {
    if (!print) world.copiesDisturbed = true;
    return false;
  }
  Referee::touches(companion_, Call::remove, path);
  if (!print) Referee::acts(companion_, "remove");
  const bool removed = world.files.remove(path);
  companion_.note("removes ", path, ": ", removed);
  if (!print) Referee::copiesChanged(world);
  return removed;
}

std::unique_ptr<platform::OutputFile> SimulatedFiles::openForWriting(const std::string& path) {
  auto& world = companion_.world;
  const bool fails = companion_.enter(Call::openForWriting, path);
  Referee::touches(companion_, Call::openForWriting, path);
  if (fails || world.files.isLink(path) || world.files.read(path) == nullptr) return nullptr;
  const int descriptor = world.nextDescriptor++;
  world.descriptors[descriptor] = path;
  return std::make_unique<Output>(world, descriptor);
}

std::optional<std::string> SimulatedFiles::temporaryDirectory() const {
  forgetPrint(companion_.record);
  if (companion_.world.director != nullptr && companion_.enter(Call::temporaryDirectory)) return std::nullopt;
  return std::string(Places::temporary);
}

bool SimulatedUserFiles::isWritable(const std::string& path) const {
  const auto& world = companion_.world;
  const bool fails = companion_.enter(Call::isWritable, path);
  Referee::touches(companion_, Call::isWritable, path);
  const bool writable = path == "/Applications" ? world.applicationsWritable : world.files.exists(path);
  companion_.record.folderWritable = writable && !fails;
  return writable && !fails;
}

bool SimulatedUserFiles::moveToTrash(const std::string& path) {
  auto& world = companion_.world;
  const bool fails = companion_.enter(Call::moveToTrash, path);
  Referee::touches(companion_, Call::moveToTrash, path);
  if (fails) return false;
  Referee::acts(companion_, "trash");
  if (!world.files.exists(path)) return false;
  const auto place = std::string(Places::trash) + std::to_string(++world.trashedItems) + ".app";
  world.files.copy(path, place);
  world.files.remove(path);
  if (world.planted == Plant::LastCopyGone) world.files.remove(Places::installed);
  ++companion_.record.trashed;
  companion_.note("trashes ", path);
  Referee::copiesChanged(world);
  return true;
}

}  // namespace tamo::simulation
