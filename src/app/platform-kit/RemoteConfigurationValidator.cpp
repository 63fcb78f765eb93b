#include "app/platform-kit/RemoteConfigurationValidator.h"

#include "app/platform-kit/SemanticVersion.h"
#include "app/platform-kit/SignedPayloadVerifier.h"
#include "core/Excerpt.h"
#include "core/Visitor.h"

#include <fmt/format.h>

namespace ventolith::app {

using Error = ConfigurationValidationError;

namespace {

std::string plainText(Error::Plain error) {
  switch (error) {
  case Error::Plain::wrongApplication: return "wrongApplication";
  case Error::Plain::publishedInFuture: return "publishedInFuture";
  case Error::Plain::invalidExpiry: return "invalidExpiry";
  case Error::Plain::expired: return "expired";
  }
  return {};
}

std::string text(const Error::Case& value) {
  using core::excerpt;
  return std::visit(core::Visitor{
                        [](const Error::UnsupportedSchemaVersion& error) {
                          return fmt::format("unsupportedSchemaVersion({})", error.version);
                        },
                        [](const Error::InvalidRevision& error) {
                          return fmt::format("invalidRevision({})", error.revision);
                        },
                        [](const Error::RevisionRollback& error) {
                          return fmt::format("revisionRollback(received: {}, minimum: {})", error.received,
                                             error.minimum);
                        },
                        [](const Error::RevisionConflict& error) {
                          return fmt::format("revisionConflict({})", error.revision);
                        },
                        [](const Error::InvalidVersion& error) {
                          return fmt::format("invalidVersion(\"{}\")", excerpt(error.text));
                        },
                        [](const Error::UpdateRequired& error) {
                          return fmt::format("updateRequired(current: \"{}\", minimum: \"{}\")",
                                             excerpt(error.current), excerpt(error.minimum));
                        },
                        [](const Error::Plain& error) { return plainText(error); },
                    },
                    value);
}

SemanticVersion version(const std::string& text) {
  auto version = SemanticVersion::fromText(text);
  if (!version) throw Error(Error::InvalidVersion{text});
  return std::move(*version);
}

} // namespace

ConfigurationValidationError::ConfigurationValidationError(Case value)
    : std::runtime_error(text(value)), value_(std::move(value)) {}

void RemoteConfigurationValidator::validate(const RemoteConfiguration& configuration,
                                            const ConfigurationValidationContext& context) {
  const auto& document = configuration;
  if (document.schemaVersion != supportedSchemaVersion)
    throw Error(Error::UnsupportedSchemaVersion{document.schemaVersion});
  if (document.appID != context.appID) throw Error(Error::Plain::wrongApplication);
  if (document.revision < 1) throw Error(Error::InvalidRevision{document.revision});
  if (document.revision < context.minimumRevision)
    throw Error(Error::RevisionRollback{document.revision, context.minimumRevision});
  if (document.publishedAt - context.now > context.allowedClockSkew)
    throw Error(Error::Plain::publishedInFuture);
  if (document.expiresAt <= document.publishedAt) throw Error(Error::Plain::invalidExpiry);
  if (document.expiresAt <= context.now) throw Error(Error::Plain::expired);

  const SemanticVersion current = version(context.appVersion);
  const SemanticVersion minimum = version(document.minimumSupportedVersion);
  if (current < minimum)
    throw Error(Error::UpdateRequired{context.appVersion, document.minimumSupportedVersion});
}

} // namespace ventolith::app
