#include "app/platform-kit/SigningPublicKeys.h"

#include "app/platform-kit/SignedDocuments.h"
#include "app/platform-kit/SignedPayloadError.h"

#include <gtest/gtest.h>

namespace ventolith::app {
namespace {

using Error = SignedPayloadError;
using support::bytes;

constexpr auto configuration = SignedPayloadPurpose::configuration;
constexpr SignedPayloadPurpose anotherPurpose{1};

TEST(StaticSigningPublicKeyProvider, GivesTheKeyOfItsIdentifierAndPurpose) {
  const StaticSigningPublicKeyProvider provider(
      {{configuration, {{"a", bytes("1")}, {"b", bytes("2")}}}, {anotherPurpose, {{"a", bytes("3")}}}});
  EXPECT_EQ(provider.publicKey("a", configuration), bytes("1"));
  EXPECT_EQ(provider.publicKey("b", configuration), bytes("2"));
  EXPECT_EQ(provider.publicKey("a", anotherPurpose), bytes("3"));
}

TEST(StaticSigningPublicKeyProvider, AnUnknownIdentifierFailsWithIt) {
  const StaticSigningPublicKeyProvider provider({{configuration, {{"a", bytes("1")}}}});
  EXPECT_EQ(support::thrown<Error>([&] { (void)provider.publicKey("b", configuration); }),
            Error::Case(Error::UnknownKey{"b"}));
}

TEST(StaticSigningPublicKeyProvider, AKeyForAnotherPurposeIsUnknown) {
  const StaticSigningPublicKeyProvider provider({{configuration, {{"a", bytes("1")}}}});
  EXPECT_EQ(support::thrown<Error>([&] { (void)provider.publicKey("a", anotherPurpose); }),
            Error::Case(Error::UnknownKey{"a"}));
}

TEST(SigningPublicKeys, ABuildCarriesOneForConfigurations) {
  const MapBundleInfo bundle({{"PlatformConfigurationKeyID", std::string(" key-1\n")},
                              {"PlatformConfigurationPublicKey", std::string(" Zm9v ")}});
  EXPECT_EQ(signingPublicKeys(bundle),
            (StaticSigningPublicKeyProvider::Keys{{configuration, {{"key-1", bytes("foo")}}}}));
}

TEST(SigningPublicKeys, WithoutBothSettingsThereIsNone) {
  const std::string id = "key-1";
  const std::string key = "Zm9v";
  const MapBundleInfo::Values bundles[] = {
      {},
      {{"PlatformConfigurationKeyID", id}},
      {{"PlatformConfigurationPublicKey", key}},
      {{"PlatformConfigurationKeyID", std::string(" ")}, {"PlatformConfigurationPublicKey", key}},
      {{"PlatformConfigurationKeyID", id}, {"PlatformConfigurationPublicKey", std::string("")}},
      {{"PlatformConfigurationKeyID", id}, {"PlatformConfigurationPublicKey", std::string("no key")}},
      {{"PlatformConfigurationKeyID", true}, {"PlatformConfigurationPublicKey", key}},
  };
  for (const auto& values : bundles)
    EXPECT_TRUE(signingPublicKeys(MapBundleInfo(values)).empty()) << values.size();
}

} // namespace
} // namespace ventolith::app
