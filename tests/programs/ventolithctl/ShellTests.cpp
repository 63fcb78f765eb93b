// The completions of three shells and the man page say what `--help` says: none of them drifts away.
#include "programs/ventolithctl/Fixture.h"

#include <fmt/format.h>
#include <fmt/ranges.h>

#include <algorithm>
#include <cstdio>
#include <regex>
#include <set>

namespace ventolith::ctl {
namespace {

using Words = std::set<std::string>;

const std::string packaging = VENTOLITH_DATA "/../packaging/";
const std::string completions = packaging + "linux/completions/";

struct Ended {
  std::string out;
  int status = 0;
};

Ended runShell(const std::string& command) {
  Ended ended;
  std::FILE* const pipe = popen(command.c_str(), "r");
  char part[4096];
  while (const std::size_t count = std::fread(part, 1, sizeof part, pipe))
    ended.out.append(part, count);
  ended.status = pclose(pipe);
  return ended;
}

/// The first word of each line; of a line that a shell describes, without the description.
Words firstWords(const std::string& text) {
  Words words;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::string word = line.substr(0, line.find_first_of("\t: "));
    if (!word.empty()) words.insert(std::move(word));
  }
  return words;
}

Words wordsThatMatch(const std::string& text, const char* pattern) {
  const std::regex expression(pattern);
  Words words;
  for (std::sregex_iterator match(text.begin(), text.end(), expression); match != std::sregex_iterator();
       ++match)
    words.insert((*match)[1].str());
  return words;
}

/// `words` quoted for a shell, with spaces between.
std::string quoted(const std::vector<std::string>& words) {
  std::string text;
  for (const std::string& word : words)
    text += fmt::format(" '{}'", word);
  return text;
}

class Shells : public CommandTest {
protected:
  struct Help {
    Words commands;
    Words options;
  };

  /// What `--help` after `command` lists.
  Help helpOf(std::vector<std::string> command) {
    command.emplace_back("--help");
    out.text.clear();
    EXPECT_EQ(run(command), ExitStatus::done);
    Help help;
    bool isInCommands = false;
    for (const std::string& line : linesOf(out.text)) {
      if (line.starts_with("Subcommands:")) isInCommands = true;
      if (line.empty()) isInCommands = false;
      if (!line.starts_with("  ") || line.starts_with("   ")) continue;
      if (isInCommands) help.commands.insert(line.substr(2, line.find(' ', 2) - 2));
      if (line.starts_with("  -")) help.options.merge(wordsThatMatch(line.substr(0, 28), "(--[a-z-]+)"));
    }
    return help;
  }

  /// Every command that can stand alone, as words.
  std::vector<std::vector<std::string>> everyCommand() {
    std::vector<std::vector<std::string>> commands;
    for (const std::string& name : helpOf({}).commands) {
      commands.push_back({name});
      for (const std::string& action : helpOf({name}).commands)
        commands.push_back({name, action});
    }
    return commands;
  }

  // What a shell offers for the next word of `line`, which begins with `start`.

  static Words inBash(const std::vector<std::string>& line, const std::string& start) {
    std::vector<std::string> words = {"ventolithctl"};
    words.insert(words.end(), line.begin(), line.end());
    words.push_back(start);
    return firstWords(
        runShell(fmt::format("bash -c 'source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1));"
                             " _ventolithctl 2>/dev/null; printf \"%s\\n\" \"${{COMPREPLY[@]}}\"' bash{}{}",
                             quoted({completions + "ventolithctl.bash"}), quoted(words)))
            .out);
  }

  static Words inFish(const std::vector<std::string>& line, const std::string& start) {
    std::string words = "ventolithctl ";
    for (const std::string& word : line)
      words += word + " ";
    return firstWords(runShell(fmt::format("fish --no-config -c 'source {}; complete -C \"{}{}\"'",
                                           completions + "ventolithctl.fish", words, start))
                          .out);
  }

  /// Zsh's own completion needs a terminal, so what the script asks it for is printed instead: `states` are
  /// what its first calls are told.
  static std::string inZsh(const std::vector<std::string>& words, const std::string& states) {
    return runShell(fmt::format(
                        "zsh -f -c 'states=({}); words=({});"
                        " _arguments() {{ print -rl -- \"$@\"; state=$states[1]; states=($states[2,-1]) }};"
                        " _describe() {{ print -rl -- ${{(P)2}} }};"
                        " completion() {{ source {} }}; completion'",
                        states, fmt::join(words, " "), completions + "_ventolithctl"))
        .out;
  }
};

constexpr const char* zshOption = R"((--[a-z]+)\[)";

TEST_F(Shells, TheHelpIsUnderstoodByTheseTests) {
  EXPECT_TRUE(helpOf({}).commands.contains("full-blast"));
  EXPECT_EQ(helpOf({}).options, (Words{"--help", "--version"}));
  EXPECT_EQ(helpOf({"helper"}).commands, (Words{"install", "uninstall", "status", "restart"}));
  EXPECT_EQ(helpOf({"replay"}).options, (Words{"--help", "--plan", "--trace", "--json", "--every"}));
  EXPECT_EQ(everyCommand().size(), 16U);
}

TEST_F(Shells, EachReadsItsFileWithoutComplaint) {
  for (const std::string& check :
       {"bash -n " + completions + "ventolithctl.bash", "zsh -n " + completions + "_ventolithctl",
        "fish --no-execute " + completions + "ventolithctl.fish"}) {
    const Ended ended = runShell(check + " 2>&1");
    EXPECT_EQ(ended.status, 0) << check << ": " << ended.out;
  }
}

TEST_F(Shells, BashOffersTheCommandsAndTheirOptions) {
  EXPECT_EQ(inBash({}, ""), helpOf({}).commands);
  EXPECT_EQ(inBash({}, "-"), helpOf({}).options);
  EXPECT_EQ(inBash({"helper"}, ""), helpOf({"helper"}).commands);
  for (const auto& command : everyCommand())
    EXPECT_EQ(inBash(command, "-"), helpOf(command).options) << command.back();
}

TEST_F(Shells, FishOffersTheCommandsAndTheirOptions) {
  EXPECT_EQ(inFish({}, ""), helpOf({}).commands);
  EXPECT_EQ(inFish({}, "--"), helpOf({}).options);
  EXPECT_EQ(inFish({"helper"}, ""), helpOf({"helper"}).commands);
  for (const auto& command : everyCommand())
    EXPECT_EQ(inFish(command, "--"), helpOf(command).options) << command.back();
}

TEST_F(Shells, ZshOffersTheCommandsAndTheirOptions) {
  const std::string top = inZsh({""}, "command");
  EXPECT_EQ(wordsThatMatch(top, zshOption), helpOf({}).options);
  EXPECT_EQ(firstWords(top.substr(top.find("snapshot:"))), helpOf({}).commands);
  const std::string actions = inZsh({"helper"}, "arguments action");
  EXPECT_EQ(firstWords(actions.substr(actions.find("install:"))), helpOf({"helper"}).commands);
  for (const auto& command : everyCommand()) {
    if (command.size() > 1) continue; // The actions of helper have no options of their own.
    const std::string text = inZsh(command, "arguments");
    EXPECT_EQ(wordsThatMatch(text.substr(text.find("*::argument")), zshOption), helpOf(command).options)
        << command.back();
  }
}

TEST_F(Shells, BashOffersPlansWhereAPlanIsExpected) {
  const std::string plan = file("a plan.json", "");
  file("a note.txt", "");
  for (const auto& command : std::vector<std::vector<std::string>>{
           {"apply"}, {"apply", "--hold"}, {"check"}, {"hold", "--plan"}, {"replay", "--plan"}}) {
    const std::string offered =
        runShell(
            fmt::format(
                "bash -c 'source \"$1\"; shift; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1));"
                " _ventolithctl 2>/dev/null; printf \"%s\\n\" \"${{COMPREPLY[@]}}\"' bash{} ventolithctl{}{}",
                quoted({completions + "ventolithctl.bash"}), quoted(command), quoted({path("a")})))
            .out;
    EXPECT_EQ(offered, plan + "\n") << command.back();
  }
}

TEST_F(Shells, TheManPageIsCleanAndNamesEveryCommandOptionAndStatus) {
  for (const std::string page : {"ventolith.1", "ventolithctl.1", "ventolith-helper.8"}) {
    const Ended lint = runShell("cd " + packaging + "man && mandoc -Tlint " + page + " 2>&1");
    EXPECT_EQ(lint.status, 0) << lint.out;
    EXPECT_EQ(lint.out, "");
  }
  const std::string page = contentOf(packaging + "man/ventolithctl.1");
  for (const auto& command : everyCommand()) {
    EXPECT_NE(page.find(fmt::format(".It Cm {}", fmt::join(command, " "))), std::string::npos)
        << command.back();
    for (const std::string& option : helpOf(command).options)
      EXPECT_NE(page.find("Fl " + option.substr(1)), std::string::npos) << option;
  }
  helpOf({});
  const Words statuses = wordsThatMatch(out.text, R"(\n  ([0-9]+) )");
  EXPECT_EQ(statuses.size(), 12U);
  for (const std::string& status : statuses)
    EXPECT_NE(page.find(".It " + status + "\n"), std::string::npos) << status;
  for (const std::string& variable : wordsThatMatch(out.text, R"(\n  ([A-Z_]+) )"))
    EXPECT_NE(page.find(".It Ev " + variable + "\n"), std::string::npos) << variable;
}

} // namespace
} // namespace ventolith::ctl
