// The raster renderer: picture size and scale, colours on a white page, the
// size cap, PNG and JPEG files, and PDF files that qpdf and pdftoppm accept.

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>

#include <filesystem>
#include <limits>
#include <vector>

#include "export/diagram_drawing.h"
#include "export/export_tools.h"
#include "io/atomic_file.h"
#include "io/diagram_reader.h"
#include "render/raster_export.h"

namespace modelyne::render {
namespace {

using core::ShapeType;
using testing::makeNode;

class Render : public ::testing::Test {
 protected:
  static void SetUpTestSuite() { ASSERT_NE(ensureGuiApplication(), nullptr); }
};

exporter::DrawingList drawingOf(const std::vector<core::Node>& nodes, float margin = 0.0f) {
  return exporter::buildDrawing(nodes, {}, {margin, true, nullptr});
}

TEST_F(Render, SizeScaleAndColours) {
  std::vector<core::Node> nodes{makeNode("a", ShapeType::rect, 0, 0, 100, 50),
                                makeNode("b", ShapeType::rect, 150, 0, 50, 50)};
  nodes[0].fillColor = "blue";
  const auto list = drawingOf(nodes, 10);
  const RenderedImage one = renderImage(list, 1.0);
  EXPECT_EQ(one.image.width(), 220);
  EXPECT_EQ(one.image.height(), 70);
  EXPECT_FALSE(one.reduced);
  EXPECT_EQ(one.image.pixelColor(60, 35), QColor(0x5A, 0xA0, 0xFF));   // inside the blue node
  EXPECT_EQ(one.image.pixelColor(185, 35), QColor(0xF5, 0xF6, 0xFA));  // default fill
  EXPECT_EQ(one.image.pixelColor(135, 35), QColor(Qt::white));         // page between them
  EXPECT_LT(qGray(one.image.pixel(10, 35)), 128);                     // left outline, antialiased

  const RenderedImage two = renderImage(list, 2.0);
  EXPECT_EQ(two.image.width(), 440);
  EXPECT_EQ(two.image.height(), 140);
  EXPECT_EQ(two.image.pixelColor(120, 70), QColor(0x5A, 0xA0, 0xFF));
  // A meaningless scale counts as 1.
  EXPECT_EQ(renderImage(list, std::numeric_limits<double>::quiet_NaN()).image.size(), one.image.size());
  EXPECT_EQ(renderImage(list, -3).image.size(), one.image.size());
}

TEST_F(Render, TextIsPainted) {
  const auto list = drawingOf({makeNode("t", ShapeType::text, 0, 0, 120, 40, "WWWW")});
  const QImage image = renderImage(list, 1.0).image;
  int dark = 0;
  for (int y = 0; y < image.height(); ++y)
    for (int x = 0; x < image.width(); ++x) dark += qGray(image.pixel(x, y)) < 128;
  EXPECT_GT(dark, 20);
}

TEST_F(Render, OversizedPicturesAreScaledDownAndSaySo) {
  const auto wide = drawingOf({makeNode("a", ShapeType::rect, 0, 0, 100000, 20)});
  const RenderedImage r = renderImage(wide, 1.0, {16384, 64LL << 20});
  EXPECT_TRUE(r.reduced);
  EXPECT_LE(r.image.width(), 16384);
  EXPECT_LT(r.scale, 0.17);
  EXPECT_NE(r.note.find("16384"), std::string::npos);

  const auto square = drawingOf({makeNode("a", ShapeType::rect, 0, 0, 5000, 5000)});
  const RenderedImage s = renderImage(square, 1.0, {16384, 1000000});
  EXPECT_TRUE(s.reduced);
  EXPECT_LE(static_cast<long long>(s.image.width()) * s.image.height(), 1000000);

  const float big = std::numeric_limits<float>::max();
  const auto huge = drawingOf({makeNode("a", ShapeType::umlActor, -big, -big, big, big, "x"),
                               makeNode("b", ShapeType::rect, big / 2, big / 2, 10, 10)});
  const RenderedImage h = renderImage(huge, 1.0, {4096, 4096LL * 4096});
  EXPECT_TRUE(h.reduced);
  EXPECT_LE(h.image.width(), 4096);
}

TEST_F(Render, PngJpegAndPdfFiles) {
  std::vector<core::Node> nodes{makeNode("a", ShapeType::umlUseCase, 0, 0, 160, 60, "Charge"),
                                makeNode("b", ShapeType::umlActor, 200, 0, 40, 70, "Driver")};
  const auto list = drawingOf(nodes, 24);
  const auto dir = testing::scratchDir("render-files");
  RasterPlan plan;
  const std::string png = pngBytes(list, 2.0, &plan);
  ASSERT_TRUE(io::writeFileAtomic(dir / "d.png", png));
  const QImage decoded(QString::fromStdString((dir / "d.png").string()));
  EXPECT_EQ(decoded.width(), 2 * (240 + 48));
  EXPECT_EQ(decoded.width(), plan.width);
  EXPECT_EQ(decoded.height(), plan.height);
  // Lossless: the file holds exactly the picture painted in memory.
  EXPECT_EQ(decoded.convertToFormat(QImage::Format_RGB32), renderImage(list, 2.0).image);
  ASSERT_TRUE(io::writeFileAtomic(dir / "d.jpg", jpegBytes(list, 1.0)));
  EXPECT_EQ(QImage(QString::fromStdString((dir / "d.jpg").string())).width(), 288);

  ASSERT_TRUE(io::writeFileAtomic(dir / "d.pdf", pdfBytes(list, 1.0, &plan)));
  const std::string pdf = testing::readAll(dir / "d.pdf");
  EXPECT_NE(pdf.find("/MediaBox [0 0 216.00 " ), std::string::npos);  // 288 px x 0.75
  EXPECT_TRUE(testing::runQuiet("qpdf --check '" + (dir / "d.pdf").string() + "'"));
  // At 96 dpi a point is 4/3 pixel, so the page comes back at the picture's own size.
  ASSERT_TRUE(testing::runQuiet("pdftoppm -r 96 -png -singlefile '" + (dir / "d.pdf").string() + "' '" +
                                (dir / "page").string() + "'"));
  const QImage page(QString::fromStdString((dir / "page.png").string()));
  EXPECT_EQ(page.width(), plan.width);
  EXPECT_EQ(page.height(), plan.height);
}

// A picture taller than one band is painted in several and comes out as
// one: the same pixels as painted in one piece, and a valid PNG.
TEST_F(Render, BandsGiveTheSamePictureAsOnePiece) {
  std::vector<core::Node> nodes;
  for (int i = 0; i < 40; ++i)
    nodes.push_back(makeNode("n" + std::to_string(i), i % 2 ? ShapeType::umlUseCase : ShapeType::umlActor,
                             static_cast<float>(i % 3) * 90, static_cast<float>(i) * 80, 80, 60,
                             "Node " + std::to_string(i)));
  const auto list = drawingOf(nodes, 24);
  const RenderedImage whole = renderImage(list, 3.0);
  // A band holds 4 Mi pixels: 4539 rows of 924 pixels, so this takes three.
  ASSERT_EQ(whole.image.width(), 924);
  ASSERT_GT(whole.image.height(), 9080);
  const std::string png = pngBytes(list, 3.0);
  QImage decoded;
  ASSERT_TRUE(decoded.loadFromData(reinterpret_cast<const uchar*>(png.data()), static_cast<int>(png.size()), "PNG"));
  EXPECT_EQ(decoded.convertToFormat(QImage::Format_RGB32), whole.image);
}

// A huge label costs what its first characters cost: the picture of a
// label of a million characters is that of its capped text with an ellipsis.
TEST_F(Render, HugeLabelsAreDrawnCapped) {
  const std::string huge(1'000'000, 'W');
  const std::string shown = std::string(exporter::kMaxLabelBytes, 'W') + "\u2026";
  const auto a = drawingOf({makeNode("t", ShapeType::rect, 0, 0, 200, 40, huge)});
  const auto b = drawingOf({makeNode("t", ShapeType::rect, 0, 0, 200, 40, shown)});
  EXPECT_EQ(a.text, shown);
  EXPECT_EQ(pngBytes(a, 1.0), pngBytes(b, 1.0));
}

TEST_F(Render, EverySampleRendersAndWrapsAsPdf) {
  const auto dir = testing::scratchDir("render-samples");
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(std::filesystem::path(MODELYNE_SOURCE_DIR) / "samples")) {
    if (entry.path().extension() != ".xml") continue;
    SCOPED_TRACE(entry.path().filename().string());
    const auto content = io::readDiagram(testing::readAll(entry.path()));
    ASSERT_TRUE(content.has_value());
    const auto list = exporter::buildDrawing(content->nodes, content->edges, {24.0f, true, &content->frame});
    const auto pdf = dir / (entry.path().stem().string() + ".pdf");
    RasterPlan plan;
    ASSERT_TRUE(io::writeFileAtomic(pdf, pdfBytes(list, 1.0, &plan)));
    EXPECT_FALSE(plan.reduced);
    EXPECT_TRUE(testing::runQuiet("qpdf --check '" + pdf.string() + "'"));
    ++count;
  }
  EXPECT_GE(count, 11);
}

}  // namespace
}  // namespace modelyne::render
