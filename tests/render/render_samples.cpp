// Renders every sample model to a PNG with its diagram frame:
//   render_samples <samples folder> <output folder> [scale]
// The pictures in docs/samples/ are made with it.

#include <filesystem>
#include <iostream>
#include <string>

#include "export/diagram_drawing.h"
#include "io/atomic_file.h"
#include "io/diagram_reader.h"
#include "render/raster_export.h"

int main(int argc, char** argv) {
  using namespace modelyne;
  if (argc < 3) {
    std::cerr << "usage: render_samples <samples folder> <output folder> [scale]\n";
    return 2;
  }
  const double scale = argc > 3 ? std::stod(argv[3]) : 1.0;
  render::ensureGuiApplication();
  int failures = 0;
  for (const auto& entry : std::filesystem::directory_iterator(argv[1])) {
    if (entry.path().extension() != ".xml") continue;
    std::string error;
    const auto text = io::readFile(entry.path(), &error);
    io::ReadError readError;
    const auto content = text ? io::readDiagram(*text, &readError) : std::nullopt;
    if (!content) {
      std::cerr << entry.path().string() << ": " << (text ? readError.what : error) << "\n";
      ++failures;
      continue;
    }
    const auto list = exporter::buildDrawing(content->nodes, content->edges, {24.0f, true, &content->frame});
    const auto out = std::filesystem::path(argv[2]) / (entry.path().stem().string() + ".png");
    const std::string png = render::pngBytes(list, scale);
    if (png.empty() || !io::writeFileAtomic(out, png, &error)) {
      std::cerr << out.string() << ": " << error << "\n";
      ++failures;
      continue;
    }
    std::cout << out.string() << "\n";
  }
  return failures == 0 ? 0 : 1;
}
