#include "acceptance/stage/stage_copies.hpp"

#include <array>
#include <filesystem>
#include <fstream>
#include <sys/xattr.h>
#include <utility>

#include "acceptance/child.hpp"
#include "stage/tools/xattr.hpp"

namespace tamo::acceptance {
namespace {

namespace fs = std::filesystem;

std::string nameOf(Copy copy) {
  static constexpr std::array names = {"installed", "", "downloaded", "staged", "translocated"};
  if (copy == Copy::InstalledInSmallLetters) throw CannotArrange("a stage's disk minds the case of letters");
  return names.at(static_cast<std::size_t>(std::to_underlying(copy)));
}

}  // namespace

void StageCopies::place(const Sample& sample) {
  const auto alone = whileNothingStarts();
  if (sample.copy == Copy::Translocated) {
    stage::translocateCopy(root_, path(Copy::Downloaded), stage::Original::Known);
    return;
  }
  stage::placeCopy(root_, programs_,
                   {.where = nameOf(sample.copy),
                    .build = sample.build,
                    .companion = companion_,
                    .quarantined = sample.marked});
  const bool asLaid = sample.definition.exitTimeout == 20 && sample.definition.arguments.empty();
  if (!asLaid) define(sample.copy, sample.definition);
}

void StageCopies::remove(Copy copy) {
  std::error_code none;
  fs::remove_all(folder(copy), none);
}

void StageCopies::define(Copy copy, const Definition& definition) {
  stage::writeAgentDefinition(root_, path(copy),
                              {.exitTimeout = definition.exitTimeout,
                               .arguments = definition.arguments,
                               .binary = definition.binary});
}

/// Put in place as a new file: the one that runs may not be written to.
void StageCopies::changeExecutable(Copy copy) {
  const auto agent =
      folder(copy) + "/Contents/Library/LoginItems/Tamo Core.app/Contents/MacOS/tamo-core-agent";
  const auto alone = whileNothingStarts();
  fs::copy_file(agent, agent + ".new");
  std::ofstream(agent + ".new", std::ios::app) << "another build";
  fs::rename(agent + ".new", agent);
}

std::string StageCopies::path(Copy copy) const {
  return stage::copyPath(root_, nameOf(copy));
}

std::string StageCopies::folder(Copy copy) const {
  return root_.host(path(copy));
}

int StageCopies::marked(Copy copy) const {
  const auto attribute = stage::attributeOnDisk("com.apple.quarantine");
  int count = 0;
  for (const auto& item : fs::recursive_directory_iterator(folder(copy)))
    if (::lgetxattr(item.path().c_str(), attribute.c_str(), nullptr, 0) >= 0) ++count;
  return count;
}

Signature StageCopies::signature(Copy) const {
  throw CannotArrange("nothing is signed on a stage");
}

}  // namespace tamo::acceptance
