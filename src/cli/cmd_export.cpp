// modelyne export: a diagram written as SVG, PDF, PNG or JPEG, or a project as SysML v2 text.
#include <array>
#include <charconv>
#include <cmath>
#include <system_error>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/raster_output.h"
#include "cli/text_check.h"
#include "interchange/sysml_export.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{OptionSpec{"--output", "-o", "OUT"}, OptionSpec{"--margin", "", "N"},
                              OptionSpec{"--no-background", "", ""}, OptionSpec{"--scale", "", "S"},
                              kModelOption, kKindOption};

constexpr std::string_view kHelp =
    "usage: modelyne export FILE -o OUT [--margin N] [--no-background] [--scale S]\n"
    "                       [--model ID] [--kind KEY]\n"
    "\n"
    "Draws the diagram into OUT, as the editor's Export does; the format\n"
    "follows OUT's extension: .svg, .pdf, .png, .jpg or .jpeg; .sysml writes\n"
    "the whole project as SysML v2 text and lists on standard error what text\n"
    "cannot hold. The margin\n"
    "around the content is N diagram units (default 24). SVG has a white page\n"
    "unless --no-background; raster formats always do and use S pixels per\n"
    "diagram unit (default 2). Works without a display.\n"
    "\n"
    "example:\n"
    "  modelyne export model.xml -o model.png --scale 4\n";

float positiveNumber(const Args& args, std::string_view option, float fallback, bool zeroAllowed) {
  const auto text = args.value(option);
  if (!text) return fallback;
  float value = 0.0f;
  const auto r = std::from_chars(text->data(), text->data() + text->size(), value);
  const bool ok = !text->empty() && r.ec == std::errc() && r.ptr == text->data() + text->size() &&
                  std::isfinite(value) && (zeroAllowed ? value >= 0.0f : value > 0.0f);
  if (!ok)
    throw CliError("invalid " + std::string(option) + " '" + *text + "' (expected a " +
                   (zeroAllowed ? "number of 0 or more" : "number above 0") + ")");
  return value;
}

int run(const Args& args) {
  expectPositionals(args, 1, 1, "export", "a FILE");
  const auto out = args.value("--output");
  if (!out || *out == "-") throw CliError("export needs -o OUT; its extension gives the format");
  if (out->size() > 6 && out->ends_with(".sysml")) {
    // Text holds the whole project; what it cannot hold is listed.
    const ModelFile file = openModel(args.positionals[0], std::nullopt, true);
    // The exporter reads each model from its diagram text as written.
    core::Project project = file.project;
    for (std::size_t i = 0; i < project.models.size(); ++i)
      project.models[i].diagramXml = std::string(file.diagramText(i));
    const interchange::SysmlExport text = interchange::exportSysml(project, *out);
    writeResult(out, text.text);
    const std::string losses = interchange::lossLines(text.report);
    diagnosticLines(losses);
    return kExitOk;
  }
  const bool raster = isRasterOutput(*out);
  ExportSettings settings = defaultExportSettings();
  settings.margin = positiveNumber(args, "--margin", settings.margin, true);
  settings.scale = positiveNumber(args, "--scale", static_cast<float>(settings.scale), false);
  settings.background = !args.has("--no-background");
  if (!raster && args.has("--scale"))
    throw CliError("--scale applies to raster formats (.pdf, .png, .jpg, .jpeg), not to SVG");
  if (raster && !settings.background)
    throw CliError("--no-background applies to SVG; raster pictures always have a white page");

  LoadedModel model = loadModel(args, args.positionals[0]);
  const std::size_t unwritable = warnAboutUnwritableText(model.file, model.index, *model.doc);
  writeExport(*out, *model.doc, settings);
  return unwritable > 0 ? kExitNegative : kExitOk;
}

}  // namespace

const Command& exportCommand() {
  static const Command command{"export", "draw a diagram as SVG, PDF, PNG or JPEG", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
