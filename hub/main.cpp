// qelm-hub: one bus for everybody.
#include <sys/resource.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <iostream>
#include <string>

#include "Hub.h"
#include "settings/Settings.h"

namespace {

constexpr char kSettingsFile[] = "/etc/qelm/qelm-hub.toml";

struct Options {
  hub::Places places;
  bool check = false;
};

// Each client takes a descriptor; how many there may be is the settings' business.
void AllowManyFiles() {
  rlimit limit{};
  if (getrlimit(RLIMIT_NOFILE, &limit) != 0) return;
  limit.rlim_cur = limit.rlim_max;
  setrlimit(RLIMIT_NOFILE, &limit);
}

int Complain(const hub::settings::SettingsErrors& errors, const std::string& file) {
  for (const auto& error : errors) std::cerr << ToText(error, file) << '\n';
  return EXIT_FAILURE;
}

int Serve(const Options& options) {
  const auto settings =
      hub::settings::Load(options.places.settings_file, !options.places.is_file_given);
  if (const auto* errors = std::get_if<hub::settings::SettingsErrors>(&settings))
    return Complain(*errors, options.places.settings_file);
  if (options.check) return EXIT_SUCCESS;
  AllowManyFiles();
  hub::Hub hub(std::get<hub::settings::Settings>(settings), options.places);
  hub.Run();
  return EXIT_SUCCESS;
}

int Run(int argc, char** argv) {
  Options options;
  CLI::App app("Offers one card bus to many clients: page, API, text ports.", "qelm-hub");
  std::string file;
  app.add_option("--config", file,
                 std::string("settings; otherwise ") + kSettingsFile + " where it is there");
  app.add_flag("--check", options.check, "say what is wrong with the settings, and end");
  const CLI::Option* const socket =
      app.add_option("--socket", options.places.socket, "where the local socket lies")
          ->capture_default_str();
  app.add_option("--page", options.places.page, "folder of the page")->capture_default_str();
  app.set_version_flag("--version", "qelm-hub " QELM_VERSION);
  CLI11_PARSE(app, argc, argv);
  options.places.is_file_given = !file.empty();
  options.places.settings_file = file.empty() ? kSettingsFile : file;
  options.places.is_socket_given = socket->count() > 0;
  return Serve(options);
}

}  // namespace

int main(int argc, char** argv) {
  try {
    return Run(argc, argv);
  } catch (const std::exception& error) {
    std::cerr << "qelm-hub: " << error.what() << '\n';
    return EXIT_FAILURE;
  }
}
