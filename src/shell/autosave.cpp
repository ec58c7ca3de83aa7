#include "shell/autosave.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QStandardPaths>

#include "io/atomic_file.h"
#include "shell/project_session.h"

namespace modelyne::shell {

AutosaveManager::AutosaveManager(const QString& dataFolder, int intervalMs)
    : folder_(QDir(dataFolder.isEmpty() ? QStandardPaths::writableLocation(QStandardPaths::AppDataLocation)
                                        : dataFolder)
                  .filePath(QStringLiteral("recovery"))) {
  timer_.setInterval(intervalMs);
  connect(&timer_, &QTimer::timeout, this, &AutosaveManager::due);
}

QString AutosaveManager::recoveryFile(const QString& path) const {
  const QString key = path.isEmpty()
                          ? QStringLiteral("untitled")
                          : QString::fromLatin1(QCryptographicHash::hash(QFileInfo(path).absoluteFilePath().toUtf8(),
                                                                         QCryptographicHash::Sha1)
                                                    .toHex()
                                                    .left(16));
  return QDir(folder_).filePath(key + QStringLiteral(".recovery.xml"));
}

void AutosaveManager::noteChange() {
  if (!timer_.isActive()) timer_.start();
}

void AutosaveManager::store(const ProjectSession& session) {
  if (!session.modified()) return;
  QDir().mkpath(folder_);
  io::writeFileAtomic(recoveryFile(session.path()).toStdString(), session.serialize());
}

void AutosaveManager::discard(const ProjectSession& session) { QFile::remove(recoveryFile(session.path())); }

std::optional<std::string> AutosaveManager::recoveryFor(const QString& path) const {
  const QString file = recoveryFile(path);
  if (!QFileInfo::exists(file)) return std::nullopt;
  // A copy older than the file it belongs to was overtaken by a later save.
  if (!path.isEmpty() && QFileInfo(path).lastModified() > QFileInfo(file).lastModified()) return std::nullopt;
  return io::readFile(file.toStdString());
}

}  // namespace modelyne::shell
