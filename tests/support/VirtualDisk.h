// A file system in memory that knows what a loss of power would leave of it.
#pragma once

#include "runtime/Files.h"

#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace ventolith::support {

/// Promises as little as a real one: content that was not flushed may be on the disk up to any byte, or be
/// zeros, and a name that was given or taken may be so on the disk or not, in any order, until its folder
/// is flushed. Only folders themselves are safe as soon as they are made.
class VirtualDisk : public runtime::FileLayer {
public:
  using Path = std::filesystem::path;
  using Content = std::map<Path, std::string>;

  /// Puts a file there for good.
  void put(const Path& file, std::string text) {
    (void)createFolders(file.parent_path());
    files_[file] = std::make_shared<Node>(Node{text, text.size()});
    safe_[file] = files_[file];
  }

  [[nodiscard]] const std::set<Path>& folders() const { return folders_; }

  /// As a running program sees it.
  [[nodiscard]] Content files() const {
    Content content;
    for (const auto& [path, node] : files_)
      content[path] = node->text;
    return content;
  }

  /// Everything that may be there when the power comes back.
  [[nodiscard]] std::vector<Content> afterPowerLoss() const {
    std::vector<Content> outcomes;
    for (std::size_t applied = 0; applied < std::size_t{1} << changes_.size(); ++applied)
      addOutcomes(namesAfter(applied), outcomes);
    return outcomes;
  }

  std::error_code createFolders(const Path& folder) override {
    for (Path one = folder; !one.empty() && folders_.insert(one).second && one != one.parent_path();)
      one = one.parent_path();
    return {};
  }

  runtime::FileResult<std::string> read(const Path& file, std::size_t limit) override {
    const auto found = files_.find(file);
    if (found == files_.end()) return std::make_error_code(std::errc::no_such_file_or_directory);
    if (found->second->text.size() > limit) return std::make_error_code(std::errc::file_too_large);
    return found->second->text;
  }

  runtime::FileResult<std::unique_ptr<runtime::NewFile>> create(const Path& file,
                                                                std::filesystem::perms) override {
    if (!folders_.contains(file.parent_path()))
      return std::make_error_code(std::errc::no_such_file_or_directory);
    if (files_.contains(file)) return std::make_error_code(std::errc::file_exists);
    const auto node = std::make_shared<Node>();
    change({.added = {{file, node}}});
    return std::make_unique<Writer>(node);
  }

  std::error_code rename(const Path& from, const Path& to) override {
    const auto found = files_.find(from);
    if (found == files_.end()) return std::make_error_code(std::errc::no_such_file_or_directory);
    change({.removed = from, .added = {{to, found->second}}});
    return {};
  }

  std::error_code flushFolder(const Path& folder) override {
    std::erase_if(changes_, [&](const Change& one) {
      const Path& path = one.added ? one.added->first : *one.removed;
      if (path.parent_path() != folder) return false;
      apply(one, safe_);
      return true;
    });
    return {};
  }

  std::error_code remove(const Path& file) override {
    if (!files_.contains(file)) return std::make_error_code(std::errc::no_such_file_or_directory);
    change({.removed = file});
    return {};
  }

private:
  struct Node {
    std::string text;
    std::size_t safeBytes = 0;
  };
  using Names = std::map<Path, std::shared_ptr<Node>>;
  struct Change {
    std::optional<Path> removed;
    std::optional<std::pair<Path, std::shared_ptr<Node>>> added;
  };

  class Writer final : public runtime::NewFile {
  public:
    explicit Writer(std::shared_ptr<Node> node) : node_(std::move(node)) {}
    runtime::FileResult<std::size_t> append(std::string_view bytes) override {
      node_->text += bytes;
      return bytes.size();
    }
    std::error_code flush() override {
      node_->safeBytes = node_->text.size();
      return {};
    }
    std::error_code close() override { return {}; }

  private:
    std::shared_ptr<Node> node_;
  };

  static void apply(const Change& change, Names& names) {
    if (change.removed) names.erase(*change.removed);
    if (change.added) names[change.added->first] = change.added->second;
  }

  void change(Change one) {
    apply(one, files_);
    changes_.push_back(std::move(one));
  }

  /// The names on the disk with those changes made whose bit is set.
  [[nodiscard]] Names namesAfter(std::size_t applied) const {
    Names names = safe_;
    for (std::size_t place = 0; place < changes_.size(); ++place)
      if ((applied >> place & 1U) != 0) apply(changes_[place], names);
    return names;
  }

  static std::set<std::string> possibleTexts(const Node& node) {
    std::set<std::string> texts;
    for (std::size_t length = node.safeBytes; length <= node.text.size(); ++length) {
      std::string text = node.text.substr(0, length);
      texts.insert(text);
      text.resize(node.text.size(), '\0');
      texts.insert(text);
    }
    return texts;
  }

  /// One file varies at a time; the others are complete.
  static void addOutcomes(const Names& names, std::vector<Content>& outcomes) {
    Content complete;
    for (const auto& [path, node] : names)
      complete[path] = node->text;
    outcomes.push_back(complete);
    for (const auto& [path, node] : names) {
      for (const std::string& text : possibleTexts(*node)) {
        Content outcome = complete;
        outcome[path] = text;
        outcomes.push_back(std::move(outcome));
      }
    }
  }

  std::set<Path> folders_;
  Names files_;
  Names safe_;
  std::vector<Change> changes_; // Since the last flush of their folder.
};

} // namespace ventolith::support
