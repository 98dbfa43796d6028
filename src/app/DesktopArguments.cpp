#include "app/DesktopArguments.h"

#include <CLI/App.hpp>
#include <CLI/Config.hpp>
#include <CLI/Formatter.hpp>
#include <iostream>

#include "numeric/PrintableText.h"

namespace gravlin {
namespace {

/// The options of the program, bound to `line`.
void describe(CLI::App& app, DesktopArguments& line) {
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
  DesktopArguments ignored;
  CLI::App app;
  describe(app, ignored);
  app.allow_extras();
  try {
    app.parse(argc, argv);
  } catch (const CLI::Success& answer) {
    const int exitCode = app.exit(answer);
    if (std::cout.flush()) return exitCode;
    std::cerr << "gravlin: Standard output could not be written.\n";
    return 1;
  } catch (const CLI::ParseError&) {
    // Told about when Qt has taken its options.
  }
  return std::nullopt;
}

std::optional<DesktopArguments> readDesktopArguments(int argc, const char* const* argv) {
  DesktopArguments line;
  CLI::App app;
  describe(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& complaint) {
    std::cerr << "gravlin: " << printable(complaint.what())
              << "\nRun with --help for more information.\n";
    return std::nullopt;
  }
  return line;
}

}  // namespace gravlin
