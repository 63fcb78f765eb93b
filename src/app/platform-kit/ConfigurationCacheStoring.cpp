#include "app/platform-kit/ConfigurationCacheStoring.h"

#include "core/Visitor.h"

#include <boost/core/demangle.hpp>
#include <fmt/format.h>

#include <typeinfo>

namespace ventolith::app {

using Error = ConfigurationCacheError;

namespace {

std::string text(const Error::Case& value) {
  return std::visit(
      core::Visitor{
          [](const Error::Keychain& error) { return fmt::format("keychain({})", error.status); },
          [](const Error::Plain&) { return std::string("corruptRecord"); },
      },
      value);
}

} // namespace

ConfigurationCacheError::ConfigurationCacheError(Case value)
    : std::runtime_error(text(value)), value_(value) {}

std::string encode(const ConfigurationCacheRecord& record) {
  core::JSON json = core::JSON::object();
  json["revision"] = record.revision;
  json["envelope"] = toJSON(record.envelope);
  std::string stored = core::writeJSON(json);
  if (stored.size() > recordBounds.bytes) throw Error(Error::Plain::corruptRecord);
  return stored;
}

ConfigurationCacheRecord decodeConfigurationCacheRecord(std::string_view stored) {
  try {
    const core::JSON document = core::parseJSON(stored, recordBounds);
    const core::JSONReader json(document);
    return {.revision = json.at("revision").asInteger(), .envelope = readSignedEnvelope(json.at("envelope"))};
  } catch (const core::DecodeError&) {
    throw Error(Error::Plain::corruptRecord);
  }
}

std::string ConfigurationCacheStoring::coordinationKey() const {
  return boost::core::demangle(typeid(*this).name());
}

std::optional<ConfigurationCacheRecord> MemoryConfigurationCacheStore::load() {
  return stored_ ? std::optional(decodeConfigurationCacheRecord(*stored_)) : std::nullopt;
}

void MemoryConfigurationCacheStore::save(const ConfigurationCacheRecord& record) {
  stored_ = encode(record);
}

} // namespace ventolith::app
