#include "Options.h"

#include <CLI/CLI.hpp>
#include <iostream>

#include "cards/CardKinds.h"

namespace virtualbus {

namespace {

constexpr int kUsage = 2;
constexpr long kLeastBaud = 300;
constexpr long kMostBaud = 4'000'000;

std::string Footer() {
  std::string text = "Card kinds, and where each sits when no card is named:\n";
  for (const CardKind& kind : kCardKinds) {
    text += "  " + HexDigit(kind.default_address) + "=" + std::string(kind.word) + "\n";
  }
  return text + "The control line \"help\" lists all control lines.";
}

void Describe(CLI::App& app, Options& options) {
  app.add_option("--card", options.cards,
                 "a card: its address, 0 to F, and its kind; may be repeated")
      ->type_name("ADDR=KIND")
      ->take_all()
      ->allow_extra_args(false);
  app.add_option("--bus", options.bus_file, "read the cards and what they hold from an XML file")
      ->type_name("FILE");
  app.add_option("--link", options.link, "make this link to the device while the cable is plugged")
      ->type_name("PATH");
  app.add_option("--wire", options.baud, "give each byte its time on the line (default: none)")
      ->type_name("BAUD")
      ->check(CLI::Range(kLeastBaud, kMostBaud));
  app.add_option("--control", options.control, "take control lines on this Unix socket")
      ->type_name("PATH");
  app.add_option("--do", options.lines, "a control line to begin with; may be repeated")
      ->type_name("LINE")
      ->allow_extra_args(false);
  app.add_option("--seed", options.seed, "seed of the faults that come by chance (default: 1)")
      ->type_name("NUMBER");
  app.add_option("--record", options.record, "write every frame and reply to a new file")
      ->type_name("FILE");
  CLI::Option* const replay =
      app.add_option("--replay", options.replay, "let a recording answer in place of cards")
          ->type_name("FILE")
          ->excludes("--card", "--bus");
  app.add_flag("--fast", options.fast, "replay as fast as the host asks, not at the recorded pace")
      ->needs(replay);
  app.add_flag("--plain", options.plain, "print events as lines, also on a terminal");
}

}  // namespace

std::optional<Options> ReadOptions(int argc, char** argv, int& status) {
  Options options;
  CLI::App app("A bus adapter with its cards behind a pseudo terminal.", "qelm-bus");
  Describe(app, options);
  app.footer(Footer());
  try {
    app.parse(argc, argv);
  } catch (const CLI::CallForHelp&) {
    std::cout << app.help();
    status = 0;
    return std::nullopt;
  } catch (const CLI::ParseError& error) {
    std::cerr << "qelm-bus: " << error.what() << '\n';
    status = kUsage;
    return std::nullopt;
  }
  return options;
}

}  // namespace virtualbus
