#include "CommandLine.h"

#include <CLI/CLI.hpp>
#include <cstdlib>
#include <iostream>
#include <map>

#include "base/Failure.h"
#include "base/Text.h"

namespace ctl {

namespace {

constexpr char kFooter[] =
    "Exit status: 0 done; 1 the hub refused (of doctor: something is wrong);\n"
    "2 the command line is wrong; 3 the hub is not reachable.\n"
    "\"qelmctl COMMAND --help\" says more of a command. Something does not work: qelmctl doctor";

// What was read before it is known which command it is for.
struct Given {
  Target target;
  std::string url;
  std::string token_file;
  bool json = false;
  std::map<const CLI::App*, const Command*> commands;
};

void DescribeCommon(CLI::App& app, Given& given) {
  app.add_option("--socket", given.target.socket, "the hub's Unix socket")
      ->type_name("PATH")
      ->capture_default_str();
  app.add_option("--url", given.url, "the hub over the network: http(s)://host:port")
      ->type_name("URL");
  app.add_option("--token-file", given.token_file,
                 "a file with a token, for --url; or QELMCTL_TOKEN in the environment")
      ->type_name("FILE");
  app.add_option("--ca", given.target.ca_file, "who signed the hub's certificate, in PEM form")
      ->type_name("FILE");
  app.add_option("--board", given.target.board, "another board, on the hub's broker")
      ->type_name("NAME");
  app.add_flag("--json", given.json, "print the hub's JSON as it came");
  app.set_version_flag("--version", std::string("qelmctl ") + QELMCTL_VERSION);
}

void DescribeCommand(CLI::App& app, const Command& command) {
  for (const Argument& argument : command.arguments) {
    CLI::Option* option = app.add_option(argument.name, argument.help)->type_name("");
    option->required(argument.count == Count::kOne);
    if (argument.count == Count::kAny) option->expected(1, -1)->allow_extra_args();
  }
  for (const Option& option : command.options) {
    if (option.value.empty()) {
      app.add_flag(option.name, option.help);
    } else {
      app.add_option(option.name, option.help)->type_name(option.value)->expected(1);
    }
  }
}

// "account add" is "add" in "account", which is a group.
CLI::App* AddCommand(CLI::App& app, const Command& command,
                     std::map<std::string, CLI::App*>& groups) {
  const std::vector<std::string> names = Split(command.name, ' ');
  CLI::App* parent = &app;
  if (names.size() > 1) {
    CLI::App*& group = groups[names[0]];
    if (group == nullptr) {
      group = app.add_subcommand(names[0], "Add, list, change and remove " + names[0] + "s");
      group->require_subcommand(1)->fallthrough();
    }
    parent = group;
  }
  CLI::App* added = parent->add_subcommand(names.back(), command.help);
  added->fallthrough();
  DescribeCommand(*added, command);
  return added;
}

std::string LastName(const std::string& names) { return Split(names, ',').back(); }

Words ReadWords(const CLI::App& app, const Command& command) {
  Words words;
  for (const Argument& argument : command.arguments) {
    const CLI::Option* option = app.get_option(argument.name);
    if (option->count() > 0) words.Set(argument.name, option->results());
  }
  for (const Option& described : command.options) {
    const std::string name = LastName(described.name);
    const CLI::Option* option = app.get_option(name);
    if (option->count() > 0) words.Set(name, option->results());
  }
  return words;
}

// The innermost command that was given.
const CLI::App* Chosen(const CLI::App& app) {
  const CLI::App* chosen = &app;
  while (!chosen->get_subcommands().empty()) chosen = chosen->get_subcommands().front();
  return chosen;
}

std::string Explain(const CLI::App& app, const CLI::ParseError& error) {
  const CLI::App* chosen = Chosen(app);
  const std::vector<std::string> unknown = app.remaining();
  if (chosen != &app || unknown.empty())
    return std::string(error.what()) + "; \"qelmctl" +
           (chosen == &app ? "" : " " + chosen->get_name()) + " --help\" shows what is right";
  std::vector<std::string> names;
  for (const CLI::App* command : app.get_subcommands({})) names.push_back(command->get_name());
  const auto meant = Nearest(unknown.front(), names);
  return "there is no command \"" + unknown.front() + "\"" +
         (meant ? "; is it \"" + *meant + "\"?" : "; \"qelmctl --help\" lists them");
}

std::string Token(const std::string& file) {
  if (!file.empty()) return ReadToken(file);
  const char* token = std::getenv("QELMCTL_TOKEN");
  return token == nullptr ? std::string() : token;
}

// What the other boards' topics do not have is not asked of the hub's own board by mistake.
void RequireBoards(const Command& command) {
  if (command.has_boards) return;
  std::vector<std::string> names;
  for (const Command& other : Commands())
    if (other.has_boards) names.push_back(other.name);
  throw Failure(kUsage, command.name + " is for the hub's own board; --board goes with " +
                            Listed(names, "and"));
}

Invocation Complete(const CLI::App& app, Given& given) {
  const CLI::App* chosen = Chosen(app);
  if (!given.url.empty()) SetUrl(given.target, given.url);
  given.target.token = Token(given.token_file);
  const Command& command = *given.commands.at(chosen);
  if (!given.target.board.empty()) RequireBoards(command);
  return {.target = given.target,
          .json = given.json,
          .command = &command,
          .words = ReadWords(*chosen, command)};
}

}  // namespace

std::optional<Invocation> ReadCommandLine(int argc, char** argv, int& status) {
  Given given;
  CLI::App app("Look at the bus, switch its outputs, and find out what is wrong.", "qelmctl");
  app.require_subcommand(1);
  DescribeCommon(app, given);
  std::map<std::string, CLI::App*> groups;
  for (const Command& command : Commands())
    given.commands[AddCommand(app, command, groups)] = &command;
  app.footer(kFooter);
  status = kUsage;
  try {
    app.parse(argc, argv);
    return Complete(app, given);
  } catch (const CLI::Success& success) {
    status = app.exit(success, std::cout, std::cerr);
  } catch (const CLI::ParseError& error) {
    std::cerr << "qelmctl: " << Explain(app, error) << '\n';
  } catch (const Failure& failure) {
    std::cerr << "qelmctl: " << failure.what() << '\n';
  }
  return std::nullopt;
}

}  // namespace ctl
