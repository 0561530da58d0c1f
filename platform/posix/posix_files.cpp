#include "platform/posix/posix_files.hpp"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <limits>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

#include "platform/posix/byte_stream.hpp"
#include "platform/posix/descriptor.hpp"
#include "values/paths.hpp"

namespace tamo::platform::posix {
namespace {

class PosixOutputFile final : public OutputFile {
 public:
  explicit PosixOutputFile(Descriptor opened) : opened_(std::move(opened)) {}
  [[nodiscard]] int descriptor() const override { return opened_.get(); }

 private:
  Descriptor opened_;
};

struct Freed {
  void operator()(char* text) const { std::free(text); }
};

bool isDirectory(const std::string& path) {
  struct stat found{};
  return ::stat(path.c_str(), &found) == 0 && S_ISDIR(found.st_mode);
}

/// Absent unless a regular file is open. A pipe that somebody laid there, whose other end nobody opens, would be waited
/// for without end, and a device would never come to its end.
std::optional<struct stat> regularFile(const Descriptor& opened) {
  struct stat found{};
  const bool regular = opened && ::fstat(opened.get(), &found) == 0 && S_ISREG(found.st_mode);
  return regular ? std::optional(found) : std::nullopt;
}

/// Whether an open file has no second name. One that somebody laid there under a name of ours has.
bool hasOneName(const struct stat& file) {
  return file.st_nlink == 1;
}

/// The mode that a replaced file hands on; absent when there is no regular file to take it from.
std::optional<mode_t> modeToKeep(const std::string& path) {
  struct stat found{};
  if (::lstat(path.c_str(), &found) != 0 || !S_ISREG(found.st_mode)) return std::nullopt;
  return static_cast<mode_t>(found.st_mode & 07777);
}

/// A file that is removed again unless it has been moved to its place.
class TemporaryFile {
 public:
  /// Made by this call or not at all: a file or a link that lies there under the name is never written
  /// through.
  explicit TemporaryFile(const std::string& folder) {
    do {
      path_ = values::joinedPath(folder, nextName());
      opened_ = Descriptor(::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
    } while (!opened_ && errno == EEXIST);
    placed_ = !opened_;
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (!placed_) ::unlink(path_.c_str());
  }

  /// On the disk before it gets its name: after a power failure, the name would otherwise lead to an empty
  /// file.
  [[nodiscard]] bool holds(std::string_view bytes, std::optional<mode_t> mode) {
    if (!opened_ || !writeAll(opened_.get(), bytes)) return false;
    if (mode && ::fchmod(opened_.get(), *mode) != 0) return false;
    return bytes.empty() || ::fsync(opened_.get()) == 0;
  }
  [[nodiscard]] bool moveTo(const std::string& path) {
    opened_.close();
    placed_ = ::rename(path_.c_str(), path.c_str()) == 0;
    return placed_;
  }

 private:
  /// Different for every process and every call; a left-over of an earlier process is passed over.
  static std::string nextName() {
    static std::atomic<unsigned> count = 0;
    return ".tamo-write." + std::to_string(::getpid()) + "." + std::to_string(count++);
  }

  std::string path_;
  Descriptor opened_;
  bool placed_ = false;
};

}  // namespace

bool exists(const std::string& path) {
  struct stat found{};
  return ::stat(path.c_str(), &found) == 0;
}

/// access() judges by the real user, who is the one to write, and says no on a volume that cannot be written
/// to.
bool isWritable(const std::string& path) {
  return ::access(path.c_str(), W_OK) == 0;
}

std::optional<std::string> withoutLinks(const std::string& path) {
  // A Mac's realpath asks for the name that each component has on the disk and opens none of them, so the
  // user is not asked for access to a folder. Of a file with "/" or "/.." behind it, which leads nowhere, it
  // would still tell (realpath.c, the same from Libc-1353.11.2 of macOS 10.15 to Libc-1725.0.11 of macOS 26).
  if (!exists(path)) return std::nullopt;
  const std::unique_ptr<char, Freed> found(::realpath(path.c_str(), nullptr));
  if (!found) return std::nullopt;
  return found.get();
}

std::optional<std::string> readWhole(const std::string& path) {
  return readWhole(Descriptor(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)));
}

std::optional<std::string> readWhole(const Descriptor& opened) {
  const auto file = regularFile(opened);
  if (!file) return std::nullopt;
  return readToEnd(opened.get(), std::numeric_limits<std::size_t>::max(),
                   static_cast<std::size_t>(file->st_size));
}

bool writeAtomically(const std::string& path, std::string_view bytes) {
  TemporaryFile file{std::string(values::parentPath(path))};
  return file.holds(bytes, modeToKeep(path)) && file.moveTo(path);
}

/// Neither made nor emptied here: who asks has put the file there.
std::unique_ptr<OutputFile> openForWriting(const std::string& path) {
  Descriptor opened(::open(path.c_str(), O_WRONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
  const auto file = regularFile(opened);
  if (!file || !hasOneName(*file)) return nullptr;
  return std::make_unique<PosixOutputFile>(std::move(opened));
}

/// Another process may make the same one at the same time, so its being there counts, not the call.
bool createDirectory(const std::string& path) {
  if (::mkdir(path.c_str(), 0777) == 0) return true;
  return errno == EEXIST && isDirectory(path);
}

/// From below, because mostly everything is there and one call tells so.
bool createDirectories(const std::string& path) {
  if (createDirectory(path)) return true;
  if (errno != ENOENT || path.empty() || path == "/") return false;
  const std::string above(values::parentPath(path));
  return createDirectories(above) && createDirectory(path);
}

bool remove(const std::string& path) {
  // Mostly it is a file, or nothing: one call tells so.
  if (std::remove(path.c_str()) == 0) return true;
  std::error_code failure;
  const auto removed = std::filesystem::remove_all(path, failure);
  return !failure && removed > 0;
}

}  // namespace tamo::platform::posix
