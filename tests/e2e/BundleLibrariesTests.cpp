// What makes the bundle for macOS stand on its own, on code of a Mac's form, which LLVM's tools make and
// change here.
#include "e2e/Program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

namespace ventolith::e2e {
namespace {

namespace fs = std::filesystem;

using Lines = std::vector<std::string>;

/// A bundle, and a package manager's folder beside it.
class BundleLibraries : public testing::Test {
protected:
  BundleLibraries() {
    fs::create_directories(at("tools"));
    fs::create_symlink("/usr/bin/llvm-otool-19", at("tools/otool"));
    fs::create_symlink("/usr/bin/llvm-install-name-tool-19", at("tools/install_name_tool"));
    folder_.write("plutil", "#!/bin/sh\necho 13.0\n");
    fs::rename(at("plutil"), at("tools/plutil"));
    fs::permissions(at("tools/plutil"), fs::perms::owner_all);
    succeed("/usr/bin/clang++-19",
            {"--target=arm64-apple-macos13", "-x", "assembler", "-c",
             folder_.write("code.s", ".globl _main\n_main: ret\n").string(), "-o", at("code.o").string()});
    write(contents() / "Info.plist", "");
  }

  [[nodiscard]] fs::path at(const std::string& name) const { return folder_.path() / name; }
  [[nodiscard]] fs::path contents() const { return at("Ventolith.app/Contents"); }
  [[nodiscard]] fs::path program() const { return contents() / "MacOS/ventolith"; }
  [[nodiscard]] fs::path plugin() const { return contents() / "PlugIns/platforms/libplugin.dylib"; }
  [[nodiscard]] fs::path frameworks() const { return contents() / "Frameworks"; }

  void write(const fs::path& file, const std::string& text) const {
    fs::create_directories(file.parent_path());
    fs::copy_file(folder_.write("draft", text), file);
  }

  void link(const fs::path& file, Lines arguments, const std::vector<fs::path>& needs) const {
    fs::create_directories(file.parent_path());
    arguments.insert(arguments.end(),
                     {"-arch", "arm64", "-platform_version", "macos", "13.0", "13.0", "-undefined",
                      "dynamic_lookup", at("code.o").string(), "-o", file.string()});
    for (const fs::path& library : needs)
      arguments.insert(arguments.end(), {"-needed_library", library.string()});
    succeed("/usr/bin/ld64.lld-19", arguments);
  }
  /// A library under the name that others will look for.
  void library(const fs::path& file, const std::string& name, const std::vector<fs::path>& needs = {}) const {
    link(file, {"-dylib", "-install_name", name}, needs);
  }
  fs::path library(const fs::path& file, const std::vector<fs::path>& needs = {}) const {
    library(file, file.string(), needs);
    return file;
  }
  void makeProgram(const std::vector<fs::path>& needs) const {
    link(program(), {"-e", "_main", "-rpath", at("brew").string()}, needs);
  }
  /// A framework in its usual form; returns its code.
  [[nodiscard]] fs::path framework(const fs::path& folder, const std::vector<fs::path>& needs) const {
    fs::path code = library(folder / "Versions/A" / folder.stem(), needs);
    write(folder / "Versions/A/Resources/Info.plist", "");
    write(folder / "Versions/A/Headers/header.h", "");
    fs::create_symlink("A", folder / "Versions/Current");
    for (const std::string& part : Lines{"Resources", "Headers", folder.stem().string()})
      fs::create_symlink("Versions/Current/" + part, folder / part);
    return code;
  }

  [[nodiscard]] Ended script(const std::string& name) const {
    return run(VENTOLITH_SOURCES "/packaging/macos/" + name, {at("Ventolith.app").string()},
               {{"PATH", at("tools").string() + ":/usr/bin:/bin"}});
  }
  /// What the code is named, and looks for.
  [[nodiscard]] Lines names(const fs::path& code) const {
    const Ended ended = run(at("tools/otool").string(), {"-L", code.string()});
    EXPECT_EQ(ended.status, 0) << ended.err;
    std::istringstream text(ended.out);
    Lines found;
    for (std::string line; std::getline(text, line);)
      if (line.starts_with('\t')) found.push_back(line.substr(1, line.find(" (") - 1));
    return found;
  }
  [[nodiscard]] bool mentions(const fs::path& code, const std::string& text) const {
    return run(at("tools/otool").string(), {"-l", code.string()}).out.find(text) != std::string::npos;
  }
  /// The files and links below a folder, sorted.
  [[nodiscard]] static Lines filesBelow(const fs::path& folder) {
    Lines found;
    for (const fs::directory_entry& entry : fs::recursive_directory_iterator(folder))
      if (entry.is_symlink() || entry.is_regular_file())
        found.push_back(entry.path().lexically_relative(folder).string());
    std::ranges::sort(found);
    return found;
  }

private:
  static void succeed(const std::string& tool, const Lines& arguments) {
    const Ended ended = run(tool, arguments);
    ASSERT_EQ(ended.status, 0) << tool << ": " << ended.err;
  }

  TemporaryFolder folder_;
};

TEST_F(BundleLibraries, AreCopiedWithWhatTheyNeedInTurnAndFoundThere) {
  // As Homebrew has them: absolute names that are links, and a neighbour that is looked for where the library
  // lies.
  const fs::path data = at("brew/cellar/libdata.1.dylib");
  library(data, "@loader_path/libdata.1.dylib");
  library(at("brew/cellar/libtext.1.2.dylib"), at("brew/cellar/libtext.1.dylib").string(), {data});
  fs::create_symlink("libtext.1.2.dylib", at("brew/cellar/libtext.1.dylib"));
  const fs::path gui = framework(at("brew/Gui.framework"), {at("brew/cellar/libtext.1.dylib")});
  makeProgram({gui});
  library(plugin(), "@rpath/libplugin.dylib", {gui});
  EXPECT_EQ(script("check-bundle").status, 1);

  const Ended ended = script("copy-libraries");
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(filesBelow(frameworks()),
            (Lines{"Gui.framework/Gui", "Gui.framework/Resources", "Gui.framework/Versions/A/Gui",
                   "Gui.framework/Versions/A/Resources/Info.plist", "Gui.framework/Versions/Current",
                   "libdata.1.dylib", "libtext.1.dylib"}));
  const std::string copiedGui = "@rpath/Gui.framework/Versions/A/Gui";
  EXPECT_EQ(names(program()), Lines{copiedGui});
  EXPECT_EQ(names(plugin()), (Lines{"@rpath/libplugin.dylib", copiedGui}));
  EXPECT_EQ(names(frameworks() / "Gui.framework/Versions/A/Gui"),
            (Lines{copiedGui, "@rpath/libtext.1.dylib"}));
  EXPECT_EQ(names(frameworks() / "libtext.1.dylib"),
            (Lines{"@rpath/libtext.1.dylib", "@rpath/libdata.1.dylib"}));
  EXPECT_TRUE(mentions(program(), "@executable_path/../Frameworks"));
  EXPECT_FALSE(mentions(program(), at("brew").string())) << "a folder of this computer is searched";
  const Ended check = script("check-bundle");
  EXPECT_EQ(check.status, 0) << check.err;
}

TEST_F(BundleLibraries, BringTheirLicencesAlong) {
  const fs::path text = library(at("brew/text/1.2/lib/libtext.dylib"));
  write(at("brew/text/1.2/LICENSE"), "terms");
  const fs::path free = library(at("brew/free/3/lib/deep/er/libfree.dylib"));
  makeProgram({text, free});
  const Ended ended = script("copy-libraries");
  ASSERT_EQ(ended.status, 0) << ended.err;
  EXPECT_EQ(readText(contents() / "Resources/Licences/text-1.2/LICENSE"), "terms");
  EXPECT_EQ(ended.err, "copy-libraries: " + free.string() + ": no licence is installed with it\n");
}

TEST_F(BundleLibraries, ThatAreInTheBundleAlreadyStayAsTheyAre) {
  const fs::path own = frameworks() / "libown.dylib";
  library(own, "@rpath/libown.dylib");
  makeProgram({own});
  const std::string before = readText(own);
  for (const int round : {1, 2}) {
    const Ended ended = script("copy-libraries");
    ASSERT_EQ(ended.status, 0) << round << ": " << ended.err;
    EXPECT_EQ(readText(own), before) << round;
  }
  EXPECT_EQ(names(program()), Lines{"@rpath/libown.dylib"});
}

TEST_F(BundleLibraries, ThatAreNowhereAreNamed) {
  const fs::path gone = library(at("brew/libgone.dylib"));
  makeProgram({gone});
  fs::remove(gone);
  const Ended ended = script("copy-libraries");
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.err.find("ventolith needs " + gone.string() + ", which is not there"), std::string::npos)
      << ended.err;
}

TEST_F(BundleLibraries, OfOneNameFromTwoPlacesAreRefused) {
  makeProgram({library(at("brew/one/libtwin.dylib")), library(at("brew/two/libtwin.dylib"))});
  const Ended ended = script("copy-libraries");
  EXPECT_EQ(ended.status, 1);
  EXPECT_NE(ended.err.find("libtwin.dylib is needed twice"), std::string::npos) << ended.err;
}

} // namespace
} // namespace ventolith::e2e
