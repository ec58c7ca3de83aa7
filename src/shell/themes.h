#pragma once
/// The application's colour themes: "ui.style.modern" (the default),
/// "ui.style.classic" and "ui.style.dark". A theme sets the widget palette
/// and style sheet and the canvas's paper and grid colours; the diagram
/// itself keeps the fixed palette of the exports in every theme.

#include <QColor>
#include <QString>
#include <QStringList>

class QApplication;

namespace modelyne::shell {

enum class ThemeRole { canvasPaper, canvasGrid, canvasBackdrop };

/// The theme keys, in menu order; they double as string-table keys.
QStringList themeKeys();
/// Applies a theme to the application (unknown keys: modern).
void applyTheme(QApplication& app, const QString& key);
QString currentTheme();
QColor themeColour(ThemeRole role);

}  // namespace modelyne::shell
