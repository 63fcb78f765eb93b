// The script that makes the key of an update feed.
#include "app/platform-kit/Base64.h"
#include "e2e/Program.h"

#include <gtest/gtest.h>
#include <sodium.h>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

const std::string script = VENTOLITH_SOURCES "/scripts/make-update-key";

TEST(UpdateKey, ThePublicHalfThatIsPrintedBelongsToTheSecretHalfInTheFile) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "key";
  const Ended ended = run(script, {file.string()});
  ASSERT_EQ(ended.status, 0) << ended.err;
  const auto publicKey = app::decodeBase64(ended.out.substr(0, ended.out.find('\n')));
  ASSERT_TRUE(publicKey);

  // Of what the lines in base64 stand for, the last 32 bytes are the key.
  const auto lines = readLines(file);
  ASSERT_EQ(lines.size(), 3U);
  const auto secret = app::decodeBase64(lines[1]);
  ASSERT_TRUE(secret);
  ASSERT_GE(secret->size(), std::size_t{crypto_sign_SEEDBYTES});
  app::Bytes expected(crypto_sign_PUBLICKEYBYTES);
  app::Bytes both(crypto_sign_SECRETKEYBYTES);
  ASSERT_EQ(crypto_sign_seed_keypair(expected.data(), both.data(),
                                     secret->data() + secret->size() - crypto_sign_SEEDBYTES),
            0);
  EXPECT_EQ(*publicKey, expected);
}

TEST(UpdateKey, TheSecretHalfIsItsOwnersAlone) {
  const TemporaryFolder folder;
  const fs::path file = folder.path() / "key";
  ASSERT_EQ(run(script, {file.string()}).status, 0);
  EXPECT_EQ(fs::status(file).permissions(), fs::perms::owner_read | fs::perms::owner_write);
}

TEST(UpdateKey, NothingIsWrittenOver) {
  const TemporaryFolder folder;
  const fs::path file = folder.write("key", "the only copy");
  const Ended ended = run(script, {file.string()});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_EQ(readText(file), "the only copy");
}

TEST(UpdateKey, NoSecretIsWrittenIntoTheRepository) {
  const fs::path file = fs::path(VENTOLITH_SOURCES) / "scripts/../docs/key";
  const Ended ended = run(script, {file.string()});
  EXPECT_EQ(ended.status, 1);
  EXPECT_EQ(ended.out, "");
  EXPECT_FALSE(fs::exists(file));
}

TEST(UpdateKey, ExactlyOneFileIsMade) {
  EXPECT_EQ(run(script, {}).status, 2);
  EXPECT_EQ(run(script, {"/nowhere/a", "/nowhere/b"}).status, 2);
}

} // namespace
} // namespace ventolith::e2e
