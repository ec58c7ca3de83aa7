// modelyne export: a diagram written as SVG, PDF, PNG or JPEG.
#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <cmath>
#include <filesystem>
#include <system_error>

#include "cli/commands.h"
#include "cli/model_input.h"
#include "cli/output.h"
#include "cli/raster_output.h"
#include "export/svg_export.h"

namespace modelyne::cli {

namespace {

constexpr std::array kOptions{OptionSpec{"--output", "-o", "OUT"}, OptionSpec{"--margin", "", "N"},
                              OptionSpec{"--no-background", "", ""}, OptionSpec{"--scale", "", "S"},
                              kModelOption, kKindOption};

constexpr std::string_view kHelp =
    "usage: modelyne export FILE -o OUT [--margin N] [--no-background] [--scale S]\n"
    "                       [--model ID] [--kind KEY]\n"
    "\n"
    "Draws the diagram into OUT; the format follows OUT's extension: .svg,\n"
    ".pdf, .png, .jpg or .jpeg. The margin around the content is N diagram\n"
    "units (default 24). SVG has a white page unless --no-background; raster\n"
    "formats always do and use S pixels per diagram unit (default 1). Works\n"
    "without a display.\n"
    "\n"
    "example:\n"
    "  modelyne export model.xml -o model.png --scale 2\n";

enum class Format { svg, pdf, png, jpeg };

struct FormatByExtension {
  std::string_view extension;
  Format format;
};
constexpr std::array<FormatByExtension, 5> kFormats{{
    {".svg", Format::svg}, {".pdf", Format::pdf}, {".png", Format::png}, {".jpg", Format::jpeg},
    {".jpeg", Format::jpeg}}};

Format formatOf(const std::string& out) {
  std::string ext = std::filesystem::path(out).extension().string();
  std::transform(ext.begin(), ext.end(), ext.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
  for (const FormatByExtension& f : kFormats)
    if (ext == f.extension) return f.format;
  throw CliError("cannot tell the format of '" + out + "' (use .svg, .pdf, .png, .jpg or .jpeg)");
}

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
  const Format format = formatOf(*out);
  const float margin = positiveNumber(args, "--margin", 24.0f, true);
  const float scale = positiveNumber(args, "--scale", 1.0f, false);
  const bool background = !args.has("--no-background");
  if (format == Format::svg && args.has("--scale"))
    throw CliError("--scale applies to raster formats (.pdf, .png, .jpg, .jpeg), not to SVG");
  if (format != Format::svg && !background)
    throw CliError("--no-background applies to SVG; raster pictures always have a white page");

  LoadedModel model = loadModel(args, args.positionals[0]);
  const core::Document& doc = *model.doc;
  switch (format) {
    case Format::svg:
      writeResult(out, exporter::svgText(doc.nodes(), doc.edges(), {margin, background}, &doc.frame()));
      break;
    case Format::pdf: writeRaster(*out, doc, RasterFormat::pdf, margin, scale); break;
    case Format::png: writeRaster(*out, doc, RasterFormat::png, margin, scale); break;
    case Format::jpeg: writeRaster(*out, doc, RasterFormat::jpeg, margin, scale); break;
  }
  return kExitOk;
}

}  // namespace

const Command& exportCommand() {
  static const Command command{"export", "draw a diagram as SVG, PDF, PNG or JPEG", kHelp, kOptions,
                               false, run};
  return command;
}

}  // namespace modelyne::cli
