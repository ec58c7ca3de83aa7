#pragma once
// What every editor test needs: one QApplication for the process (settings
// kept in a temporary folder, never the user's), a main window that answers
// no questions, and helpers to click and drag on the canvas in diagram units.

#include <QAction>
#include <QApplication>
#include <QMenuBar>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <memory>
#include <ostream>

#include "shell/canvas_view.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"
#include "shell/output_log.h"

/// Failed expectations print QStrings as text.
inline void PrintTo(const QString& s, std::ostream* os) { *os << '"' << s.toStdString() << '"'; }

namespace modelyne::shell::shelltest {

inline QApplication& app() {
  static QTemporaryDir config;
  static int argc = 1;
  static char name[] = "shell_tests";
  static char* argv[] = {name, nullptr};
  static QApplication* a = [] {
    qputenv("XDG_CONFIG_HOME", config.path().toLocal8Bit());
    QStandardPaths::setTestModeEnabled(true);
    return new QApplication(argc, argv);
  }();
  return *a;
}

/// A shown main window with its own data folder, in English.
struct Editor {
  QTemporaryDir data;
  std::unique_ptr<MainWindow> window;

  Editor() {
    app();
    i18n::setLanguage(QStringLiteral("en"));
    window = std::make_unique<MainWindow>(data.path());
    window->setInteractive(false);
    window->resize(1280, 800);
    window->show();
    if (!QTest::qWaitForWindowExposed(window.get())) qWarning("window not exposed");
  }
  CanvasView& canvas() const { return *window->canvas(); }
  bridge::DocumentHandle doc() const { return window->session()->document(); }
  QPoint at(double x, double y) const { return canvas().mapFromScene({x, y}).toPoint(); }
  void click(double x, double y, Qt::KeyboardModifiers mods = {}) const {
    QTest::mouseClick(&canvas(), Qt::LeftButton, mods, at(x, y));
  }
  /// Press at one diagram point, move in steps, release at another.
  void drag(QPointF from, QPointF to) const {
    QTest::mousePress(&canvas(), Qt::LeftButton, {}, at(from.x(), from.y()));
    for (int i = 1; i <= 4; ++i) {
      const QPointF p = from + (to - from) * (i / 4.0);
      QTest::mouseMove(&canvas(), at(p.x(), p.y()));
    }
    QTest::mouseRelease(&canvas(), Qt::LeftButton, {}, at(to.x(), to.y()));
  }
  bool logged(const QString& text) const {
    for (const QString& m : window->log().messages())
      if (m.contains(text)) return true;
    return false;
  }
  std::size_t undoCount() const { return doc()->history().undoCount(); }
};

}  // namespace modelyne::shell::shelltest
