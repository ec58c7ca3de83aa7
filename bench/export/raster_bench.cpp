// Raster export of the 10,000-node synthetic diagram to PNG at scale 1:
// prints the time of each stage and the process's peak memory. A separate
// program, so the peak belongs to this export alone.
//   bench_export_raster [nodes] [scale]

#include <sys/resource.h>

#include <chrono>
#include <cstdio>
#include <filesystem>
#include <string>

#include "core/document.h"
#include "export/diagram_drawing.h"
#include "gen/synthetic.h"
#include "io/atomic_file.h"
#include "render/raster_export.h"

int main(int argc, char** argv) {
  using namespace modelyne;
  using Clock = std::chrono::steady_clock;
  const std::size_t nodes = argc > 1 ? std::stoul(argv[1]) : 10000;
  const double scale = argc > 2 ? std::stod(argv[2]) : 1.0;
  render::ensureGuiApplication();

  core::Document doc;
  bench::syntheticDocument(doc, nodes, 42);
  const auto t0 = Clock::now();
  const exporter::DrawingList list = exporter::buildDrawing(doc.nodes(), doc.edges(), {24.0f, true, nullptr});
  const auto t1 = Clock::now();
  const render::RenderedImage image = render::renderImage(list, scale);
  const auto t2 = Clock::now();
  const std::string png = render::encodePng(image.image);
  const auto t3 = Clock::now();
  const auto path = std::filesystem::temp_directory_path() / "modelyne-bench-raster.png";
  std::string error;
  const bool ok = !png.empty() && io::writeFileAtomic(path, png, &error);
  const auto t4 = Clock::now();
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);

  auto secs = [](auto a, auto b) { return std::chrono::duration<double>(b - a).count(); };
  std::printf("nodes %zu, %zu primitives, picture %dx%d at scale %g%s\n", nodes, list.items.size(),
              image.image.width(), image.image.height(), image.scale, image.reduced ? " (reduced)" : "");
  std::printf("build drawing %.3f s, paint %.3f s, PNG encode %.3f s (%.1f MB), write %.3f s, total %.3f s\n",
              secs(t0, t1), secs(t1, t2), secs(t2, t3), static_cast<double>(png.size()) / 1e6, secs(t3, t4),
              secs(t0, t4));
  std::printf("peak memory (max RSS) %.1f MB%s\n", static_cast<double>(usage.ru_maxrss) / 1024.0,
              ok ? "" : (", write failed: " + error).c_str());
  return ok ? 0 : 1;
}
