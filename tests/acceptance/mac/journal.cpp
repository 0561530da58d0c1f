#include "acceptance/mac/journal.hpp"

#include <fcntl.h>
#include <unistd.h>

#include "acceptance/place.hpp"
#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "platform/posix/posix_files.hpp"

namespace tamo::acceptance {

void Journal::note(const std::string& line) const {
  const auto text = "\n" + platform::posix::readWhole(file_).value_or("");
  if (text.contains("\n" + line + "\n")) return;
  const platform::Descriptor file(::open(file_.c_str(), O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC, 0600));
  const bool kept = file && platform::writeAll(file.get(), line + "\n") && ::fsync(file.get()) == 0;
  if (!kept) throw PlaceError("the journal " + file_ + " cannot be written");
}

}  // namespace tamo::acceptance
