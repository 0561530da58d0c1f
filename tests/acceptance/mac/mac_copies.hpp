#pragma once

#include <string>
#include <vector>

#include "acceptance/mac/journal.hpp"
#include "acceptance/mac/mac_settings.hpp"
#include "acceptance/place.hpp"
#include "platform/posix/descriptor.hpp"

namespace tamo::acceptance {

/// The copies on a Mac: assembled in the temporary directory, signed from the inside out, and copied with ditto. Nothing
/// that does not bear a mark of ours is ever replaced or removed.
class MacCopies final : public Copies {
 public:
  /// Both must outlive it.
  MacCopies(const MacSettings& settings, Journal& journal) : settings_(settings), journal_(journal) {}

  void place(const Sample& sample) override;
  void remove(Copy copy) override;
  void define(Copy copy, const Definition& definition) override;
  void changeExecutable(Copy copy) override;
  [[nodiscard]] std::string path(Copy copy) const override;
  [[nodiscard]] std::string folder(Copy copy) const override { return path(copy); }
  [[nodiscard]] int marked(Copy copy) const override;
  [[nodiscard]] Signature signature(Copy copy) const override;

  /// Raises PlaceError when a Tamo is installed that was not put there by these checks.
  void onlyOurs() const;
  /// Removes the samples that were placed and lie in the Trash now. Those that may not be touched stay there.
  void emptyTrash();

 private:
  void putInPlace(const std::string& made, const std::string& app) const;
  void assemble(const std::string& app, const Sample& sample) const;
  void writeList(const std::string& app, const Definition& definition) const;
  void sign(const std::string& app) const;
  void awaitTranslocation();
  void onlyOfASample() const;

  const MacSettings& settings_;
  Journal& journal_;
  std::string translocated_;
  /// Found again wherever they are moved to.
  std::vector<platform::Descriptor> placed_;
};

}  // namespace tamo::acceptance
