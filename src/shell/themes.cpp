#include "shell/themes.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QStyleFactory>

namespace modelyne::shell {
namespace {

struct Theme {
  const char* key;
  const char* style;  // Qt widget style
  bool dark;
  QRgb paper;
  QRgb grid;
  QRgb backdrop;
  const char* sheet;
};

const Theme kThemes[] = {
    {"ui.style.modern", "Fusion", false, 0xFFFFFF, 0xECEEF3, 0xF3F4F7,
     "QDockWidget::title { padding: 4px; background: #E9ECF2; }"
     "QToolBar { border: none; spacing: 2px; }"},
    {"ui.style.classic", "Windows", false, 0xFFFFFF, 0xE4E4E4, 0xD4D0C8, ""},
    {"ui.style.dark", "Fusion", true, 0xE9EBF0, 0xD5D8E0, 0x2B2D33,
     "QDockWidget::title { padding: 4px; background: #33363D; }"
     "QToolBar { border: none; spacing: 2px; }"},
};

const Theme* g_current = &kThemes[0];

QPalette darkPalette() {
  QPalette p;
  const QColor window(0x2B, 0x2D, 0x33), base(0x1F, 0x21, 0x26), text(0xE6, 0xE8, 0xEE);
  p.setColor(QPalette::Window, window);
  p.setColor(QPalette::WindowText, text);
  p.setColor(QPalette::Base, base);
  p.setColor(QPalette::AlternateBase, window);
  p.setColor(QPalette::ToolTipBase, base);
  p.setColor(QPalette::ToolTipText, text);
  p.setColor(QPalette::Text, text);
  p.setColor(QPalette::PlaceholderText, QColor(0x8A, 0x8F, 0x9C));
  p.setColor(QPalette::Button, QColor(0x36, 0x39, 0x41));
  p.setColor(QPalette::ButtonText, text);
  p.setColor(QPalette::BrightText, Qt::red);
  p.setColor(QPalette::Highlight, QColor(0x2D, 0x7D, 0xF6));
  p.setColor(QPalette::HighlightedText, Qt::white);
  p.setColor(QPalette::Link, QColor(0x6A, 0xA8, 0xFF));
  p.setColor(QPalette::Disabled, QPalette::Text, QColor(0x70, 0x74, 0x7E));
  p.setColor(QPalette::Disabled, QPalette::ButtonText, QColor(0x70, 0x74, 0x7E));
  p.setColor(QPalette::Disabled, QPalette::WindowText, QColor(0x70, 0x74, 0x7E));
  return p;
}

}  // namespace

QStringList themeKeys() {
  QStringList keys;
  for (const Theme& t : kThemes) keys << QLatin1String(t.key);
  return keys;
}

void applyTheme(QApplication& app, const QString& key) {
  g_current = &kThemes[0];
  for (const Theme& t : kThemes)
    if (key == QLatin1String(t.key)) g_current = &t;
  if (QStyle* style = QStyleFactory::create(QLatin1String(g_current->style))) app.setStyle(style);
  app.setPalette(g_current->dark ? darkPalette() : app.style()->standardPalette());
  app.setStyleSheet(QLatin1String(g_current->sheet));
}

QString currentTheme() { return QLatin1String(g_current->key); }

QColor themeColour(ThemeRole role) {
  switch (role) {
    case ThemeRole::canvasPaper: return QColor::fromRgb(g_current->paper);
    case ThemeRole::canvasGrid: return QColor::fromRgb(g_current->grid);
    case ThemeRole::canvasBackdrop: return QColor::fromRgb(g_current->backdrop);
  }
  return Qt::white;
}

}  // namespace modelyne::shell
