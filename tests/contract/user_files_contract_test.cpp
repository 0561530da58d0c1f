#include <filesystem>

#include "contract/backend.hpp"

namespace tamo::contract {
namespace {

namespace fs = std::filesystem;

class UserFilesContract : public Contract {
 protected:
  [[nodiscard]] bool isThere(std::string_view name) const {
    return fs::symlink_status(host(name)).type() != fs::file_type::not_found;
  }

  platform::UserFiles& userFiles = platform.userFiles;
};

TEST_P(UserFilesContract, OwnFilesFoldersAndLinksToThemAreWritable) {
  lay("file", "");
  fs::create_symlink("file", host("link"));
  EXPECT_TRUE(userFiles.isWritable(path("file")));
  EXPECT_TRUE(userFiles.isWritable(path("link")));
  EXPECT_TRUE(userFiles.isWritable(backend->folder()));
}

TEST_P(UserFilesContract, WhatIsMissingOrDanglesIsNotWritable) {
  fs::create_symlink("nowhere", host("dangling"));
  EXPECT_FALSE(userFiles.isWritable(path("nowhere")));
  EXPECT_FALSE(userFiles.isWritable(path("dangling")));
}

TEST_P(UserFilesContract, AnItemThatIsTrashedIsGoneWithAllBelowIt) {
  fs::create_directories(host("Tamo.app/Contents"));
  lay("Tamo.app/Contents/file", "bytes");
  EXPECT_TRUE(userFiles.moveToTrash(path("Tamo.app")));
  EXPECT_FALSE(isThere("Tamo.app"));
}

TEST_P(UserFilesContract, AnItemOfTheSameNameIsTrashedAsWell) {
  for (int item = 0; item < 3; ++item) {
    fs::create_directories(host("Tamo.app"));
    EXPECT_TRUE(userFiles.moveToTrash(path("Tamo.app")));
    EXPECT_FALSE(isThere("Tamo.app"));
  }
}

TEST_P(UserFilesContract, ALinkIsTrashedItselfEvenADanglingOne) {
  lay("file", "bytes");
  fs::create_symlink("file", host("link"));
  fs::create_symlink("nowhere", host("dangling"));
  EXPECT_TRUE(userFiles.moveToTrash(path("link")));
  EXPECT_TRUE(userFiles.moveToTrash(path("dangling")));
  EXPECT_FALSE(isThere("link"));
  EXPECT_FALSE(isThere("dangling"));
  EXPECT_EQ(contentsOf("file"), "bytes");
}

TEST_P(UserFilesContract, WhatIsMissingIsNotTrashed) {
  EXPECT_FALSE(userFiles.moveToTrash(path("nowhere")));
  EXPECT_FALSE(userFiles.moveToTrash(path("nowhere/below")));
}

TAMO_CONTRACT(UserFilesContract);

}  // namespace
}  // namespace tamo::contract
