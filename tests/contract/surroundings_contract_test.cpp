#include "contract/backend.hpp"
#include "values/paths.hpp"

namespace tamo::contract {
namespace {

class BundlesContract : public Contract {};

TEST_P(BundlesContract, TheMainBundleIsAnAbsoluteStandardisedPath) {
  const auto bundle = platform.bundles.mainBundlePath();
  EXPECT_TRUE(bundle.starts_with('/')) << bundle;
  EXPECT_EQ(bundle, values::standardisedPath(bundle));
}

TEST_P(BundlesContract, AnOrdinaryFolderIsNotTranslocated) {
  EXPECT_EQ(platform.bundles.originalLocation(path("missing")), std::nullopt);
}

TAMO_CONTRACT(BundlesContract);

class UserContract : public Contract {};

TEST_P(UserContract, TheUserHasAHomeThatExists) {
  const auto entry = platform.user.passwordEntry();
  ASSERT_TRUE(entry);
  ASSERT_TRUE(entry->home);
  EXPECT_TRUE(entry->home->starts_with('/')) << *entry->home;
  EXPECT_TRUE(platform.files.exists(*entry->home)) << *entry->home;
}

TAMO_CONTRACT(UserContract);

}  // namespace
}  // namespace tamo::contract
