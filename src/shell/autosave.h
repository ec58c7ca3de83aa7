#pragma once
/// AutosaveManager: crash safety. Every minute it asks for a recovery copy
/// of the open project when it has unsaved changes, and writes it into
/// "recovery/" of the data folder, never over the user's file. A copy is
/// keyed by the file's absolute path ("untitled" for a project never
/// saved) and removed when the project is saved or closed cleanly; one left
/// behind means the editor stopped with unsaved changes, and is offered
/// back when that file (or the editor, for "untitled") is opened again.

#include <QObject>
#include <QString>
#include <QTimer>
#include <optional>
#include <string>

namespace modelyne::shell {

class ProjectSession;

class AutosaveManager : public QObject {
  Q_OBJECT
 public:
  explicit AutosaveManager(const QString& dataFolder = {}, int intervalMs = 60000);

  /// Writes the recovery copy when the session has unsaved changes.
  void store(const ProjectSession& session);
  /// Removes the session's recovery copy.
  void discard(const ProjectSession& session);
  /// Reminds the manager that something changed (starts the timer).
  void noteChange();
  /// The recovery copy left for a file, if any.
  std::optional<std::string> recoveryFor(const QString& path) const;
  /// The recovery copy of a never-saved project, if any.
  std::optional<std::string> untitledRecovery() const { return recoveryFor({}); }
  /// Where the copy for a file path (empty: untitled) is kept.
  QString recoveryFile(const QString& path) const;

 signals:
  void due();

 private:
  QString folder_;
  QTimer timer_;
};

}  // namespace modelyne::shell
