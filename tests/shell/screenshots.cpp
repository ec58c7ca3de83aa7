// Takes the documentation screenshots of the editor: run under a display
// (xvfb-run -a build/.../shell_screenshots docs/screenshots). Not a test.
#include <QApplication>
#include <QContextMenuEvent>
#include <QDir>
#include <QDockWidget>
#include <QScreen>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <iostream>

#include "shell/canvas_view.h"
#include "shell/dialogs/explain_dialog.h"
#include "shell/findings_panel.h"
#include <QListWidget>
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/themes.h"

using namespace modelyne::shell;

namespace {

QString g_out;

void settle() {
  for (int i = 0; i < 10; ++i) {
    QApplication::processEvents();
    QTest::qWait(30);
  }
}

/// The whole screen under a real display (dialogs included); the window alone offscreen.
void shoot(QWidget& window, const QString& name) {
  settle();
  QPixmap pix;
  if (QGuiApplication::platformName() == QLatin1String("xcb")) {
    const QRect frame = window.frameGeometry();
    pix = window.screen()->grabWindow(0, frame.x(), frame.y(), frame.width(), frame.height());
  } else {
    pix = window.grab();
  }
  const QString path = QDir(g_out).filePath(name);
  pix.save(path);
  std::cout << path.toStdString() << "\n";
}

QString sample(const char* name) { return QStringLiteral(MODELYNE_SOURCE_DIR "/samples/") + QLatin1String(name); }

}  // namespace

int main(int argc, char** argv) {
  QApplication app(argc, argv);
  g_out = argc > 1 ? QString::fromLocal8Bit(argv[1]) : QStringLiteral("docs/screenshots");
  QDir().mkpath(g_out);
  QTemporaryDir data;
  qputenv("XDG_CONFIG_HOME", data.path().toLocal8Bit());
  i18n::setLanguage(QStringLiteral("en"));
  applyTheme(app, QStringLiteral("ui.style.modern"));

  MainWindow w(data.path());
  w.setInteractive(false);
  w.resize(1600, 1000);
  w.move(0, 0);
  w.show();
  shoot(w, QStringLiteral("start-page.png"));

  const std::pair<const char*, const char*> diagrams[] = {{"bdd-vehicle.xml", "editor-bdd.png"},
                                                          {"act-order-fulfilment.xml", "editor-act.png"},
                                                          {"stm-door-controller.xml", "editor-stm.png"},
                                                          {"sd-atm-withdrawal.xml", "editor-sd.png"},
                                                          {"ibd-camera.xml", "editor-ibd.png"},
                                                          {"mm-product-launch.xml", "editor-mm.png"}};
  for (const auto& [file, shot] : diagrams) {
    if (!w.openFile(sample(file))) continue;
    w.canvas()->fitToContent();
    if (w.canvas()->zoom() > 1.0) w.canvas()->zoomActualSize();
    shoot(w, QLatin1String(shot));
  }

  // Findings of a diagram that breaks rules, one of them selected.
  if (w.openFile(sample("uc-ev-charging.xml"))) {
    w.validate();
    if (w.findings()->list()->count() > 0) {
      w.findings()->list()->setCurrentRow(0);
      emit w.findings()->revealRequested(FindingsPanel::elementOf(w.findings()->list()->item(0)->text(),
                                                                   *w.session()->document()));
    }
    shoot(w, QStringLiteral("findings-panel.png"));
  }

  // Explanation dialog.
  if (w.openFile(sample("bdd-vehicle.xml"))) {
    w.showExplanation();
    settle();
    if (auto* dlg = w.findChild<ExplainDialog*>()) {
      dlg->move(w.geometry().center() - QPoint(dlg->width() / 2, dlg->height() / 2));
      shoot(w, QStringLiteral("explanation-dialog.png"));
      if (QGuiApplication::platformName() != QLatin1String("xcb")) dlg->grab().save(QDir(g_out).filePath("explanation-dialog.png"));
      dlg->close();
    }
  }

  // AI Generate on a new block definition diagram.
  w.newProject(modelyne::core::DiagramKind::bdd);
  w.aiGenerate(QStringLiteral("The Drone System contains a Flight Controller, a Battery and a Camera. "
                              "The Flight Controller sends commands to the Camera. The Pilot uses the Ground Station. "
                              "The Ground Station communicates with the Flight Controller."),
               QStringLiteral("offline"));
  w.canvas()->clearSelection();
  w.action(QStringLiteral("tools.review"))->trigger();
  settle();
  for (QWidget* top : QApplication::topLevelWidgets())
    if (top->objectName() == QLatin1String("reviewDialog")) top->move(w.geometry().right() - top->width() - 20, w.geometry().top() + 80);
  shoot(w, QStringLiteral("ai-generate.png"));
  for (QWidget* top : QApplication::topLevelWidgets())
    if (top->objectName() == QLatin1String("reviewDialog")) top->close();

  // Dark theme.
  w.openFile(sample("stm-door-controller.xml"));
  w.applyThemeKey(QStringLiteral("ui.style.dark"));
  shoot(w, QStringLiteral("dark-theme.png"));
  w.applyThemeKey(QStringLiteral("ui.style.modern"));

  // The context menu of a node: the commands that act on it, with their shortcuts.
  if (w.openFile(sample("bdd-vehicle.xml")) && !w.session()->document()->nodes().empty()) {
    const auto& g = w.session()->document()->nodes().front().geom;
    const QPoint at = w.canvas()->mapFromScene({g.x + g.w / 2, g.y + g.h / 2}).toPoint();
    QContextMenuEvent ev(QContextMenuEvent::Mouse, at, w.canvas()->mapToGlobal(at));
    QApplication::sendEvent(w.canvas(), &ev);
    shoot(w, QStringLiteral("context-menu.png"));
    if (QWidget* menu = QApplication::activePopupWidget()) menu->close();
  }

  // Japanese interface.
  w.applyLanguage(QStringLiteral("ja"));
  w.openFile(sample("req-braking.xml"));
  w.canvas()->selectAll();
  w.canvas()->clearSelection();
  shoot(w, QStringLiteral("japanese-ui.png"));
  // The property panel in Japanese, a requirement selected.
  for (const auto& n : w.session()->document()->nodes())
    if (n.type == modelyne::core::ShapeType::sysmlRequirementDef) {
      w.canvas()->setSelection({QString::fromStdString(n.id)}, {});
      break;
    }
  shoot(w, QStringLiteral("japanese-properties.png"));
  return 0;
}
