#include "platform/linux/FolderListing.h"

#include "platform/linux/HwmonTree.h"

#include <gtest/gtest.h>

namespace ventolith::platform {
namespace {

namespace fs = std::filesystem;
using Names = std::vector<std::string>;

TEST(FolderListing, NamesWhatTheFolderHoldsEachTime) {
  const HwmonTree tree;
  tree.set("hwmon1", "");
  const FolderListing listing(tree.root());
  ASSERT_EQ(listing.names(), (Names{".", "..", "hwmon1"}));
  EXPECT_EQ(listing.names(), (Names{".", "..", "hwmon1"}));

  tree.set("hwmon0", "");

  EXPECT_EQ(listing.names(), (Names{".", "..", "hwmon0", "hwmon1"}));
}

TEST(FolderListing, StaysWithItsFolderWhateverThePathLeadsTo) {
  const HwmonTree tree;
  tree.set("folder/old", "");
  const FolderListing listing(tree.root() / "folder");
  fs::rename(tree.root() / "folder", tree.root() / "moved");
  tree.set("folder/new", "");

  EXPECT_EQ(listing.names(), (Names{".", "..", "old"}));
}

TEST(FolderListing, OfNothingIsEmpty) {
  const HwmonTree tree;
  tree.set("file", "");

  EXPECT_EQ(FolderListing().names(), Names{});
  EXPECT_EQ(FolderListing(tree.root() / "file").names(), Names{});
  EXPECT_EQ(FolderListing(tree.root() / "absent").names(), Names{});
}

} // namespace
} // namespace ventolith::platform
