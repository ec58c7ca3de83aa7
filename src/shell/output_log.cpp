#include "shell/output_log.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QStandardPaths>

namespace modelyne::shell {

OutputLog::OutputLog(QString folder, QObject* parent) : QObject(parent), folder_(std::move(folder)) {
  if (folder_.isEmpty()) folder_ = QStandardPaths::writableLocation(QStandardPaths::AppDataLocation);
}

QString OutputLog::fileFor(QDate day) const {
  return QDir(folder_).filePath(QString::asprintf("modelyne_output_%04u%02u%02u.log",
                                                  static_cast<unsigned>(day.year()),
                                                  static_cast<unsigned>(day.month()),
                                                  static_cast<unsigned>(day.day())));
}

void OutputLog::log(const QString& message) {
  const QDateTime now = QDateTime::currentDateTime();
  const QString line = now.toString(QStringLiteral("[HH:mm:ss] ")) + message;
  messages_.append(message);
  // The file is opened per message so that a crash loses nothing and a new
  // day starts a new file without any timer.
  QDir().mkpath(folder_);
  QFile file(fileFor(now.date()));
  if (file.open(QIODevice::Append | QIODevice::Text)) file.write((line + QLatin1Char('\n')).toUtf8());
  emit messageLogged(line);
}

}  // namespace modelyne::shell
