// Any text in the place of each of the four files: it gives nothing, or a value that is saved and comes back
// the same. What was saved is settled: saving what it gives writes the same text.
#include "app/ConfigStore.h"

#include <cstdint>
#include <cstdlib>
#include <map>

using namespace ventolith;

namespace {

/// Holds the same text under every name until a file is replaced.
class SameTextEverywhere final : public runtime::FileLayer {
public:
  using Path = std::filesystem::path;

  explicit SameTextEverywhere(std::string_view text) : text_(text) {}

  [[nodiscard]] const std::map<Path, std::string>& replaced() const { return replaced_; }

  std::error_code createFolders(const Path&) override { return {}; }
  runtime::FileResult<std::string> read(const Path& file, std::size_t limit) override {
    const auto found = replaced_.find(file);
    std::string text = found == replaced_.end() ? text_ : found->second;
    if (text.size() > limit) return std::make_error_code(std::errc::file_too_large);
    return text;
  }
  runtime::FileResult<std::unique_ptr<runtime::NewFile>> create(const Path&,
                                                                std::filesystem::perms) override {
    draft_.clear();
    return std::make_unique<Draft>(draft_);
  }
  std::error_code rename(const Path&, const Path& to) override {
    replaced_[to] = draft_;
    return {};
  }
  std::error_code flushFolder(const Path&) override { return {}; }
  std::error_code remove(const Path&) override { return {}; }

private:
  class Draft final : public runtime::NewFile {
  public:
    explicit Draft(std::string& text) : text_(text) {}
    runtime::FileResult<std::size_t> append(std::string_view bytes) override {
      text_ += bytes;
      return bytes.size();
    }
    std::error_code flush() override { return {}; }
    std::error_code close() override { return {}; }

  private:
    std::string& text_;
  };

  std::string text_;
  std::string draft_;
  std::map<Path, std::string> replaced_;
};

template <class Value, class Load, class Save>
void expectRoundTrip(const SameTextEverywhere& files, const std::optional<Value>& value, Load load,
                     Save save) {
  if (!value) return;
  save(*value);
  const auto written = files.replaced();
  if (written.size() != 1 || load() != value) std::abort();
  save(*value);
  if (files.replaced() != written) std::abort();
}

/// The two forms of any document read back to the same.
void expectSameDocument(std::string_view text) {
  const core::JSON document = core::parseJSON(text);
  const core::JSONBounds anySize{.bytes = SIZE_MAX};
  const core::JSON pretty = core::parseJSON(core::writePrettyJSON(document), anySize);
  const core::JSON onOneLine = core::parseJSON(core::writeJSON(document), anySize);
  if (pretty != onOneLine) std::abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto check = [&](auto load, auto save) {
    SameTextEverywhere files(text);
    const app::ConfigStore store(files, [] { return std::filesystem::path("/config"); });
    expectRoundTrip(
        files, (store.*load)(), [&] { return (store.*load)(); },
        [&](const auto& value) { (store.*save)(value); });
  };
  using Store = app::ConfigStore;
  check(&Store::loadPlan, &Store::savePlan);
  check(&Store::loadPresets, &Store::savePresets);
  check(&Store::loadActivePresetID, &Store::saveActivePresetID);
  check(&Store::loadAutoSwitch, &Store::saveAutoSwitch);
  try {
    expectSameDocument(text);
  } catch (const core::DecodeError&) {
    return 0; // Refused: as good.
  }
  return 0;
}
