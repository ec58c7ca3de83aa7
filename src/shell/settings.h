#pragma once
/// Settings: what persists between sessions (language, theme, recent
/// files, window layout, AI backend), kept in QSettings under the
/// organisation "Modelyne" and application "modelyne-editor".

#include <QByteArray>
#include <QString>
#include <QStringList>

namespace modelyne::shell::settings {

/// The language code; empty when the user never chose one.
QString language();
void setLanguage(const QString& code);
QString theme();
void setTheme(const QString& key);
QString aiBackend();  ///< "offline" (default) or "cloud"
void setAiBackend(const QString& backend);

/// Most recent first, at most kMaxRecent entries.
inline constexpr int kMaxRecent = 10;
QStringList recentFiles();
void addRecentFile(const QString& path);
void removeRecentFile(const QString& path);

QByteArray windowGeometry();
QByteArray windowState();
void setWindowLayout(const QByteArray& geometry, const QByteArray& state);

}  // namespace modelyne::shell::settings
