#include <algorithm>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

#include "contract/backend.hpp"

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;

class FilesContract : public Contract {
 protected:
  void link(std::string_view name, const std::string& target) const {
    fs::create_symlink(target, host(name));
  }
  void folder(std::string_view name) const { fs::create_directories(host(name)); }
  [[nodiscard]] mode_t modeOf(std::string_view name) const {
    struct stat found{};
    EXPECT_EQ(::lstat(host(name).c_str(), &found), 0);
    return found.st_mode & 07777;
  }
  [[nodiscard]] std::vector<std::string> namesIn(std::string_view name) const {
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(host(name)))
      names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
  }

  platform::Files& files = platform.files;
};

TEST_P(FilesContract, FilesFoldersAndLinksToThemExist) {
  lay("file", "");
  link("to-file", "file");
  EXPECT_TRUE(files.exists(path("file")));
  EXPECT_TRUE(files.exists(backend->folder()));
  EXPECT_TRUE(files.exists(path("to-file")));
}

TEST_P(FilesContract, WhatIsMissingOrDanglesDoesNotExist) {
  lay("file", "");
  link("dangling", "nowhere");
  EXPECT_FALSE(files.exists(path("nowhere")));
  EXPECT_FALSE(files.exists(path("dangling")));
  EXPECT_FALSE(files.exists(path("file/below")));
}

TEST_P(FilesContract, AFileIsReadWholeAsBytes) {
  const std::string bytes = std::string("a\0b\r\n\xFF", 6) + std::string(200'000, 'x');
  lay("file", bytes);
  lay("empty", "");
  EXPECT_EQ(files.readWhole(path("file")), bytes);
  EXPECT_EQ(files.readWhole(path("empty")), "");
}

TEST_P(FilesContract, WhatIsNoFileCannotBeRead) {
  EXPECT_EQ(files.readWhole(path("missing")), std::nullopt);
  EXPECT_EQ(files.readWhole(backend->folder()), std::nullopt);
}

TEST_P(FilesContract, ANewFileGetsItsBytesAndTheUmasksMode) {
  const auto mask = ::umask(027);
  EXPECT_TRUE(files.writeAtomically(path("new"), "bytes"));
  ::umask(mask);
  EXPECT_EQ(contentsOf("new"), "bytes");
  EXPECT_EQ(modeOf("new"), 0640U);
}

TEST_P(FilesContract, AReplacedFileHandsItsModeOn) {
  lay("file", "old");
  ::chmod(host("file").c_str(), 0604);
  EXPECT_TRUE(files.writeAtomically(path("file"), ""));
  EXPECT_EQ(contentsOf("file"), "");
  EXPECT_EQ(modeOf("file"), 0604U);
  EXPECT_EQ(namesIn("."), std::vector<std::string>{"file"});
}

TEST_P(FilesContract, WhoReadsTheOldFileReadsOn) {
  lay("file", "old bytes");
  const platform::Descriptor reader(::open(host("file").c_str(), O_RDONLY));
  EXPECT_TRUE(files.writeAtomically(path("file"), "new"));
  char bytes[20];
  EXPECT_EQ(::read(reader.get(), bytes, sizeof bytes), 9);
}

TEST_P(FilesContract, ALinkIsReplacedAndItsTargetLeftAlone) {
  lay("target", "precious");
  ::chmod(host("target").c_str(), 0700);
  link("planted", "target");
  EXPECT_TRUE(files.writeAtomically(path("planted"), "bytes"));
  EXPECT_NE(modeOf("planted"), 0700U);
  EXPECT_FALSE(fs::is_symlink(host("planted")));
  EXPECT_EQ(contentsOf("planted"), "bytes");
  EXPECT_EQ(contentsOf("target"), "precious");
}

TEST_P(FilesContract, AFailedWriteLeavesNothingBehind) {
  folder("taken");
  EXPECT_FALSE(files.writeAtomically(path("taken"), "bytes"));
  EXPECT_FALSE(files.writeAtomically(path("missing/file"), "bytes"));
  EXPECT_EQ(namesIn("."), std::vector<std::string>{"taken"});
}

TEST_P(FilesContract, MissingDirectoriesAreCreatedAllTheWay) {
  EXPECT_TRUE(files.createDirectories(path("a/b/c")));
  EXPECT_TRUE(fs::is_directory(host("a/b/c")));
  EXPECT_TRUE(files.createDirectories(path("a/b/c")));
  EXPECT_TRUE(files.createDirectories(path("a/d/")));
  EXPECT_EQ(namesIn("a"), (std::vector<std::string>{"b", "d"}));
}

TEST_P(FilesContract, DirectoriesAreCreatedBelowALink) {
  folder("real");
  link("linked", "real");
  EXPECT_TRUE(files.createDirectories(path("linked/new")));
  EXPECT_TRUE(files.createDirectories(path("linked")));
  EXPECT_TRUE(fs::is_directory(host("real/new")));
}

TEST_P(FilesContract, AFileInTheWayOfADirectoryIsAFailure) {
  lay("file", "");
  link("dangling", "nowhere");
  EXPECT_FALSE(files.createDirectories(path("file")));
  EXPECT_FALSE(files.createDirectories(path("file/below/that")));
  EXPECT_FALSE(files.createDirectories(path("dangling")));
  EXPECT_EQ(namesIn("."), (std::vector<std::string>{"dangling", "file"}));
}

TEST_P(FilesContract, AFolderIsRemovedWithAllBelowIt) {
  folder("outside/kept");
  folder("removed/deep");
  lay("removed/deep/file", "x");
  link("removed/deep/outside", "../../outside");
  EXPECT_TRUE(files.remove(path("removed")));
  EXPECT_EQ(namesIn("."), std::vector<std::string>{"outside"});
  EXPECT_EQ(namesIn("outside"), std::vector<std::string>{"kept"});
}

TEST_P(FilesContract, ALinkIsRemovedItself) {
  folder("outside/kept");
  link("link", "outside");
  link("dangling", "nowhere");
  EXPECT_TRUE(files.remove(path("link")));
  EXPECT_TRUE(files.remove(path("dangling")));
  EXPECT_EQ(namesIn("."), std::vector<std::string>{"outside"});
  EXPECT_EQ(namesIn("outside"), std::vector<std::string>{"kept"});
}

TEST_P(FilesContract, RemovingNothingIsAFailure) {
  EXPECT_FALSE(files.remove(path("missing")));
  EXPECT_FALSE(files.remove(path("missing/below")));
}

TEST_P(FilesContract, WritingBeginsAtTheStartAndKeepsTheRest) {
  lay("file", "0123456789");
  const auto output = files.openForWriting(path("file"));
  ASSERT_NE(output, nullptr);
  EXPECT_EQ(::write(output->descriptor(), "abc", 3), 3);
  EXPECT_EQ(contentsOf("file"), "abc3456789");
}

TEST_P(FilesContract, AnOutputFileIsClosedInTools) {
  lay("file", "");
  const auto output = files.openForWriting(path("file"));
  ASSERT_NE(output, nullptr);
  EXPECT_NE(::fcntl(output->descriptor(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST_P(FilesContract, OnlyAnExistingFileIsOpenedForWriting) {
  EXPECT_EQ(files.openForWriting(path("missing")), nullptr);
  EXPECT_EQ(files.openForWriting(backend->folder()), nullptr);
  EXPECT_TRUE(namesIn(".").empty());
}

/// Whoever laid the link between our making of the file and our opening of it has named one that is not ours.
TEST_P(FilesContract, ALinkIsNotOpenedForWriting) {
  lay("victim", "kept");
  link("link", "victim");
  link("dangling", "nowhere");
  EXPECT_EQ(files.openForWriting(path("link")), nullptr);
  EXPECT_EQ(files.openForWriting(path("dangling")), nullptr);
  EXPECT_EQ(contentsOf("victim"), "kept");
  EXPECT_EQ(namesIn("."), (std::vector<std::string>{"dangling", "link", "victim"}));
}

TEST_P(FilesContract, AFileWithASecondNameIsNotOpenedForWriting) {
  lay("victim", "kept");
  fs::create_hard_link(host("victim"), host("planted"));
  EXPECT_EQ(files.openForWriting(path("planted")), nullptr);
  fs::remove(host("planted"));
  EXPECT_NE(files.openForWriting(path("victim")), nullptr);
}

/// Nobody ever opens the other end; the test ends, or waits for ever.
TEST_P(FilesContract, APipeIsNeitherReadNorWrittenNorWaitedFor) {
  ASSERT_EQ(::mkfifo(host("pipe").c_str(), 0600), 0);
  link("to-pipe", "pipe");
  EXPECT_EQ(files.readWhole(path("pipe")), std::nullopt);
  EXPECT_EQ(files.readWhole(path("to-pipe")), std::nullopt);
  EXPECT_EQ(files.openForWriting(path("pipe")), nullptr);
}

/// With its other end open, a pipe has no end that could be read to, and takes what was meant for a file.
TEST_P(FilesContract, APipeWhoseOtherEndIsOpenIsNoFileEither) {
  ASSERT_EQ(::mkfifo(host("pipe").c_str(), 0600), 0);
  const platform::Descriptor other(::open(host("pipe").c_str(), O_RDWR | O_NONBLOCK | O_CLOEXEC));
  ASSERT_TRUE(other);
  EXPECT_EQ(files.readWhole(path("pipe")), std::nullopt);
  EXPECT_EQ(files.openForWriting(path("pipe")), nullptr);
}

TEST_P(FilesContract, TheTemporaryDirectoryIsThereAndEndsInASlash) {
  const auto directory = files.temporaryDirectory();
  ASSERT_TRUE(directory);
  EXPECT_TRUE(directory->ends_with('/')) << *directory;
  EXPECT_TRUE(files.writeAtomically(*directory + "file", "x"));
  EXPECT_TRUE(files.remove(*directory + "file"));
}

TEST_P(FilesContract, LinksInEveryComponentAreResolved) {
  folder("real/deep");
  lay("real/deep/file", "");
  link("first", "real");
  link("real/second", "deep");
  const auto base = files.resolvedPath(backend->folder());
  EXPECT_EQ(files.resolvedPath(path("first/second/file")), base + "/real/deep/file");
  EXPECT_EQ(files.resolvedPath(path("first//second/../deep/")), base + "/real/deep");
}

TEST_P(FilesContract, APathThatLeadsNowhereIsOnlyStandardised) {
  folder("real");
  link("linked", "real");
  link("loop", "loop");
  EXPECT_EQ(files.resolvedPath(path("linked/missing")), path("linked/missing"));
  EXPECT_EQ(files.resolvedPath(path("linked/./missing/../x/")), path("linked/x"));
  EXPECT_EQ(files.resolvedPath(path("loop")), path("loop"));
}

TEST_P(FilesContract, AFileLeadsNowhereAsAFolder) {
  lay("file", "");
  link("linked", "file");
  EXPECT_EQ(files.resolvedPath(path("file/")), path("file"));
  EXPECT_EQ(files.resolvedPath(path("linked/")), path("linked"));
  EXPECT_EQ(files.resolvedPath(path("file/..")), backend->folder());
}

TEST_P(FilesContract, AResolvedPathHasTheLettersOfTheDisk) {
  folder("Folder");
  const auto other = path("fOLDER");
  const auto onDisk = files.resolvedPath(path("Folder"));
  EXPECT_TRUE(onDisk.ends_with("/Folder"));
  EXPECT_EQ(files.resolvedPath(other), files.exists(other) ? onDisk : other);
}

TEST_P(FilesContract, ThePrivateFolderIsDroppedFromItsOwnItems) {
  EXPECT_EQ(files.resolvedPath("/tmp"), "/tmp");
  EXPECT_EQ(files.resolvedPath("/private/tmp"), "/tmp");
  EXPECT_EQ(files.resolvedPath("/private"), "/private");
  EXPECT_EQ(files.resolvedPath("/private/no-such-item"), "/private/no-such-item");
}

TAMO_CONTRACT(FilesContract);

}  // namespace
}  // namespace tamo::contract
