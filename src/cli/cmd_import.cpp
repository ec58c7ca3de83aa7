// modelyne import: SysML v2 text read into a project of diagrams, with the
// account of every declaration.
#include <array>

#include "cli/commands.h"
#include "cli/output.h"
#include "core/document.h"
#include "interchange/report.h"
#include "interchange/sysml_import.h"
#include "io/project_file.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{OptionSpec{"--output", "-o", "OUT"}, OptionSpec{"--format", "", "text|json"}};

constexpr std::string_view kHelp =
    "usage: modelyne import FILE.sysml [-o OUT.xml] [--format text|json]\n"
    "\n"
    "Reads SysML v2 (or KerML) text into a project of diagrams: one model per\n"
    "owner and diagram kind, every node laid out. The project goes to OUT, or\n"
    "to standard output without -o. Standard error gets the syntax errors\n"
    "(FILE:LINE:COLUMN: what was expected), the summary line and one line per\n"
    "declaration that could not be drawn (FILE:LINE: KIND NAME: REASON). With\n"
    "--format json the summary, losses, errors and models go to standard output\n"
    "as one JSON object instead, and -o is needed for the project.\n"
    "\n"
    "exit status: 0 read without syntax errors; 1 some statements were skipped\n"
    "for syntax errors (the rest is imported); 2 nothing could be read.\n"
    "\n"
    "example:\n"
    "  modelyne import vehicle.sysml -o vehicle.xml\n";

int run(const Args& args) {
  expectPositionals(args, 1, 1, "import", "a FILE");
  const std::string format = args.value("--format").value_or("text");
  if (format != "text" && format != "json")
    throw CliError("invalid --format '" + format + "' (expected text or json)");
  const auto out = args.value("--output");
  if (format == "json" && (!out || *out == "-"))
    throw CliError("--format json writes the summary to standard output; give -o OUT for the project");

  InputText input = readInput(args.positionals[0]);
  interchange::SysmlImport im = interchange::importSysml(std::move(input.text), input.name);
  if (im.status != interchange::ImportStatus::unreadable) {
    const core::Document empty;
    writeResult(out, io::serializeProject(im.project, empty));
  }
  if (format == "json") {
    writeResult(std::nullopt, interchange::reportJson(im.report));
  } else {
    std::string text = interchange::errorLines(im.report);
    text += interchange::summaryLine(im.report) + "\n";
    text += interchange::lossLines(im.report);
    diagnosticLines(text);
  }
  switch (im.status) {
    case interchange::ImportStatus::ok: return kExitOk;
    case interchange::ImportStatus::partial: return kExitNegative;
    case interchange::ImportStatus::unreadable: break;
  }
  return kExitError;
}

}  // namespace

const Command& importCommand() {
  static const Command command{"import", "read SysML v2 text into a project of diagrams", kHelp, kOptions, false,
                               run};
  return command;
}

}  // namespace modelyne::cli
