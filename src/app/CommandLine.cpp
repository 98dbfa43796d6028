#include "app/CommandLine.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>

namespace gravlin {
namespace {

/// The options of the program, bound to `line`.
void describe(CLI::App& app, CommandLine& line) {
  app.name("gravlin");
  app.description("A workbench for triangle meshes: smoothing, curvature and feature lines.");
  app.footer("To draw pictures or to process meshes without a display, see gravlin-batch.");
  app.set_version_flag("--version", std::string("gravlin " GRAVLIN_VERSION),
                       "Print the version and exit");
  app.add_option("FILE", line.files, "Meshes to open (data, ply, ply2, plyR)")->type_name("");
  app.add_option("--settings", line.settingsFile, "Keep the settings in this file")
      ->type_name("FILE");
}

}  // namespace

std::optional<int> answerWithoutWindow(int argc, const char* const* argv) {
  CommandLine ignored;
  CLI::App app;
  describe(app, ignored);
  app.allow_extras();
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& answer) {
    return app.exit(answer);
  } catch (const CLI::ParseError&) {
    // Told about when Qt has taken its options.
  }
  return std::nullopt;
}

std::optional<CommandLine> readCommandLine(int argc, const char* const* argv) {
  CommandLine line;
  CLI::App app;
  describe(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& complaint) {
    app.exit(complaint);
    return std::nullopt;
  }
  return line;
}

}  // namespace gravlin
