#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include "platform/files.hpp"
#include "platform/posix/descriptor.hpp"

/// The operations of Files on the host's own paths, for the adapters to forward to. What is promised stands
/// at Files; here stands what that comes to in POSIX. Any thread.
namespace tamo::platform::posix {

[[nodiscard]] bool exists(const std::string& path);

/// Whether the real user may write to the item, links followed; false for a missing one.
[[nodiscard]] bool isWritable(const std::string& path);

/// The path of the existing item that `path` leads to, the links of every component followed; absent when it
/// leads to none. Where letter case doesn't count, each name has the case that it has on the disk.
[[nodiscard]] std::optional<std::string> withoutLinks(const std::string& path);

[[nodiscard]] std::optional<std::string> readWhole(const std::string& path);
/// The same of what is open already; absent for a descriptor that is none or is no regular file's.
[[nodiscard]] std::optional<std::string> readWhole(const Descriptor& opened);

/// The temporary file lies in the folder of `path`, so the folder's rights and free space decide. A new file
/// has the mode 0666 less the umask; a regular file that is replaced hands its mode on.
[[nodiscard]] bool writeAtomically(const std::string& path, std::string_view bytes);

[[nodiscard]] std::unique_ptr<OutputFile> openForWriting(const std::string& path);

/// One directory, whose folder exists. True when a directory, or a link to one, is there afterwards.
[[nodiscard]] bool createDirectory(const std::string& path);
[[nodiscard]] bool createDirectories(const std::string& path);

[[nodiscard]] bool remove(const std::string& path);

}  // namespace tamo::platform::posix
