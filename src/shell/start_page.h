#pragma once
/// StartPage: what the editor shows at launch and when no project is open:
/// a new project per diagram kind, open a file, the recent files and the
/// shipped samples.

#include <QStringList>
#include <QWidget>

#include "core/diagram_kind.h"

class QLabel;
class QListWidget;
class QPushButton;

namespace modelyne::shell {

class StartPage : public QWidget {
  Q_OBJECT
 public:
  explicit StartPage(QWidget* parent = nullptr);

  void setRecentFiles(const QStringList& files);
  void retranslate();
  /// The shipped sample files (samples/*.xml), sorted by name.
  static QStringList sampleFiles();

 signals:
  void newProjectRequested(core::DiagramKind kind);
  void openRequested();
  void fileRequested(const QString& path);
  void dismissRequested();

 private:
  QLabel* title_ = nullptr;
  QLabel* newLabel_ = nullptr;
  QLabel* recentLabel_ = nullptr;
  QLabel* samplesLabel_ = nullptr;
  QList<QPushButton*> kindButtons_;
  QPushButton* open_ = nullptr;
  QPushButton* dismiss_ = nullptr;
  QListWidget* recent_ = nullptr;
  QListWidget* samples_ = nullptr;
};

}  // namespace modelyne::shell
