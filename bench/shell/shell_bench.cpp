// The editor on a 10,000-node, 15,000-edge diagram, offscreen:
//   open        open the file until the canvas has painted once (ready to edit)
//   repaint     a full repaint of a 1920x1080 canvas, fitted and at 100%
//   drag        one node dragged across the view (press, 60 moves, release)
#include <QApplication>
#include <QTemporaryDir>
#include <QTest>
#include <benchmark/benchmark.h>

#include "bridge/bridge.h"
#include "io/atomic_file.h"
#include "shell/canvas_view.h"
#include "shell/main_window.h"

using namespace modelyne;

namespace {

QApplication& app() {
  static int argc = 1;
  static char name[] = "bench_shell";
  static char* argv[] = {name, nullptr};
  static QApplication* a = [] {
    qputenv("QT_QPA_PLATFORM", "offscreen");
    return new QApplication(argc, argv);
  }();
  return *a;
}

/// A diagram of `n` blocks on a grid with 1.5 edges per node, written once.
const QString& largeDiagram() {
  static QTemporaryDir dir;
  static QString path = [] {
    const int n = 10000;
    std::vector<core::Node> nodes;
    std::vector<core::Edge> edges;
    const int cols = 100;
    for (int i = 0; i < n; ++i) {
      core::Node node;
      node.id = "n" + std::to_string(i);
      node.type = i % 3 == 0 ? core::ShapeType::sysmlBlock : i % 3 == 1 ? core::ShapeType::sysmlPartUsage
                                                                         : core::ShapeType::umlClass;
      node.geom = {static_cast<float>((i % cols) * 220), static_cast<float>((i / cols) * 150), 160, 80};
      node.text = "Element " + std::to_string(i);
      nodes.push_back(std::move(node));
    }
    for (int i = 0; i < n * 3 / 2; ++i) {
      const int a = i % n;
      const int b = i < n ? (a % cols == cols - 1 ? a - 1 : a + 1) : (a + cols < n ? a + cols : a - cols);
      core::Edge e;
      e.id = "e" + std::to_string(i);
      e.source = "n" + std::to_string(a);
      e.target = "n" + std::to_string(b);
      e.sourcePort = i < n ? core::Anchor::right : core::Anchor::bottom;
      e.targetPort = i < n ? core::Anchor::left : core::Anchor::top;
      e.type = i % 4 == 0 ? core::EdgeType::composition : core::EdgeType::association;
      edges.push_back(std::move(e));
    }
    bridge::DocumentHandle doc = bridge::createDocument();
    bridge::loadDiagramXml(doc, "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<diagram>\n"
                                "  <DiagramFrame kind=\"bdd\" elementType=\"package\" elementName=\"Model\" name=\"\" show=\"true\"/>\n"
                                "</diagram>\n");
    bridge::insertElements(doc, std::move(nodes), std::move(edges));
    const QString p = dir.filePath(QStringLiteral("large.xml"));
    io::writeFileAtomic(p.toStdString(), bridge::saveDiagramXml(doc));
    bridge::destroyDocument(doc);
    return p;
  }();
  return path;
}

struct Window {
  QTemporaryDir data;
  shell::MainWindow w{data.path()};
  Window() {
    w.setInteractive(false);
    w.show();
    w.canvas()->setFixedSize(1920, 1080);
    QApplication::processEvents();
  }
};

void BM_OpenLargeDiagram(benchmark::State& state) {
  app();
  const QString path = largeDiagram();
  Window win;
  for (auto _ : state) {
    win.w.openFile(path);
    benchmark::DoNotOptimize(win.w.canvas()->renderToImage(false));
  }
  state.counters["nodes"] = static_cast<double>(win.w.session()->document()->nodes().size());
  state.counters["edges"] = static_cast<double>(win.w.session()->document()->edges().size());
}
BENCHMARK(BM_OpenLargeDiagram)->Unit(benchmark::kMillisecond)->Iterations(3);

void repaint(benchmark::State& state, bool fitted) {
  app();
  Window win;
  win.w.openFile(largeDiagram());
  if (fitted) win.w.canvas()->fitToContent();
  else {
    win.w.canvas()->zoomActualSize();
    win.w.canvas()->centreOn({5000, 3000});
  }
  for (auto _ : state) benchmark::DoNotOptimize(win.w.canvas()->renderToImage(true));
  state.counters["zoom"] = win.w.canvas()->zoom();
}
void BM_RepaintFitted1080p(benchmark::State& state) { repaint(state, true); }
void BM_Repaint100Percent1080p(benchmark::State& state) { repaint(state, false); }
BENCHMARK(BM_RepaintFitted1080p)->Unit(benchmark::kMillisecond);
BENCHMARK(BM_Repaint100Percent1080p)->Unit(benchmark::kMillisecond);

void BM_DragOneNodeAcrossTheView(benchmark::State& state) {
  app();
  Window win;
  win.w.openFile(largeDiagram());
  shell::CanvasView& c = *win.w.canvas();
  c.zoomActualSize();
  c.centreOn({1000, 600});
  const auto& g = win.w.session()->document()->findNode("n204")->geom;
  for (auto _ : state) {
    const QPointF from = c.mapFromScene({g.x + 20, g.y + 20});
    QTest::mousePress(&c, Qt::LeftButton, {}, from.toPoint());
    for (int i = 1; i <= 60; ++i) {
      QTest::mouseMove(&c, (from + QPointF(i * 20, i * 8)).toPoint());
      c.repaint();  // each step painted, as a user sees it
    }
    QTest::mouseRelease(&c, Qt::LeftButton, {}, (from + QPointF(1200, 480)).toPoint());
    c.repaint();
    state.PauseTiming();
    win.w.action(QStringLiteral("edit.undo"))->trigger();
    state.ResumeTiming();
  }
  state.counters["steps"] = 60;
}
BENCHMARK(BM_DragOneNodeAcrossTheView)->Unit(benchmark::kMillisecond)->Iterations(5);

}  // namespace

BENCHMARK_MAIN();
