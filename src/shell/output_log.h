#pragma once
/// OutputLog: every message of the application goes here. It keeps the
/// messages for the log panel and appends each one, time-stamped, to the
/// day's log file "modelyne_output_YYYYMMDD.log" in the application's data
/// folder (a new file each day).

#include <QDate>
#include <QObject>
#include <QString>
#include <QStringList>

namespace modelyne::shell {

class OutputLog : public QObject {
  Q_OBJECT
 public:
  /// `folder` is where the daily files go; empty: the application data folder.
  explicit OutputLog(QString folder = {}, QObject* parent = nullptr);

  /// Logs one message (already translated).
  void log(const QString& message);
  const QStringList& messages() const noexcept { return messages_; }
  /// The file that a message logged on `day` goes to.
  QString fileFor(QDate day) const;

 signals:
  void messageLogged(const QString& line);

 private:
  QString folder_;
  QStringList messages_;
};

}  // namespace modelyne::shell
