#include "shell/settings.h"

#include <QFileInfo>
#include <QSettings>

namespace modelyne::shell::settings {
namespace {

QSettings store() { return QSettings(QStringLiteral("Modelyne"), QStringLiteral("modelyne-editor")); }

}  // namespace

QString language() { return store().value(QStringLiteral("ui/language")).toString(); }
void setLanguage(const QString& code) { store().setValue(QStringLiteral("ui/language"), code); }
QString theme() { return store().value(QStringLiteral("ui/theme"), QStringLiteral("ui.style.modern")).toString(); }
void setTheme(const QString& key) { store().setValue(QStringLiteral("ui/theme"), key); }
QString aiBackend() { return store().value(QStringLiteral("ai/backend"), QStringLiteral("offline")).toString(); }
void setAiBackend(const QString& backend) { store().setValue(QStringLiteral("ai/backend"), backend); }

QStringList recentFiles() { return store().value(QStringLiteral("files/recent")).toStringList(); }

void addRecentFile(const QString& path) {
  const QString abs = QFileInfo(path).absoluteFilePath();
  QStringList list = recentFiles();
  list.removeAll(abs);
  list.prepend(abs);
  while (list.size() > kMaxRecent) list.removeLast();
  store().setValue(QStringLiteral("files/recent"), list);
}

void removeRecentFile(const QString& path) {
  QStringList list = recentFiles();
  list.removeAll(path);
  store().setValue(QStringLiteral("files/recent"), list);
}

QByteArray windowGeometry() { return store().value(QStringLiteral("window/geometry")).toByteArray(); }
QByteArray windowState() { return store().value(QStringLiteral("window/state")).toByteArray(); }

void setWindowLayout(const QByteArray& geometry, const QByteArray& state) {
  QSettings s = store();
  s.setValue(QStringLiteral("window/geometry"), geometry);
  s.setValue(QStringLiteral("window/state"), state);
}

}  // namespace modelyne::shell::settings
