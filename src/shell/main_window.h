#pragma once
/// MainWindow: the editor's one window. It owns the open project
/// (ProjectSession), the canvas, the panels (palette, model tree,
/// properties, output log, findings) and every command of the menus, the
/// toolbar and the command palette. Commands act on the active diagram
/// through the bridge and the other subsystems' functions.

#include <QHash>
#include <QMainWindow>
#include <QPointer>
#include <QSet>
#include <memory>
#include <optional>
#include <span>
#include <vector>

#include "core/diagram_kind.h"
#include "shell/command_table.h"
#include "shell/project_session.h"

class QAction;
class QActionGroup;
class QDockWidget;
class QLabel;
class QMenu;
class QStackedWidget;

namespace modelyne::shell {

class AutosaveManager;
class CanvasView;
class FindingsPanel;
class LogPanel;
class ModelTree;
class OutputLog;
class PalettePanel;
class PropertyPanel;
class ReviewSession;
class StartPage;

class MainWindow : public QMainWindow {
  Q_OBJECT
 public:
  /// `dataFolder` holds the daily log and recovery copies (empty: the
  /// application data folder).
  explicit MainWindow(const QString& dataFolder = {}, QWidget* parent = nullptr);
  ~MainWindow() override;

  // ---- for tests, benchmarks and scripted use ----
  ProjectSession* session() const noexcept { return session_.get(); }
  CanvasView* canvas() const noexcept { return canvas_; }
  PalettePanel* palette() const noexcept { return palette_; }
  PropertyPanel* properties() const noexcept { return properties_; }
  ModelTree* modelTree() const noexcept { return modelTree_; }
  FindingsPanel* findings() const noexcept { return findings_; }
  StartPage* startPage() const noexcept { return startPage_; }
  OutputLog& log() const noexcept { return *log_; }
  ReviewSession* review() const noexcept { return review_.get(); }
  /// A command by its name ("file.save", "edit.undo", "arrange.align.left").
  QAction* action(const QString& name) const { return actions_.value(name); }
  /// Every command with a text, by name (what the command palette lists).
  QList<QAction*> allCommands() const;
  /// A menu of the table by its id ("file.export", "edit").
  QMenu* menu(const QString& id) const { return menus_.value(id); }
  /// The commands shown at `place` (CommandPlace bits), in table order,
  /// in a new menu that deletes itself when closed.
  QMenu* contextMenu(unsigned place);
  /// The rows of the editor's commands and menus (main_window_commands.cpp).
  static std::span<const CommandSpec> commandTable();
  bool startPageShown() const;

  /// Starts a new project of one diagram of the kind (asks about unsaved changes).
  bool newProject(core::DiagramKind kind);
  /// Opens a model file; false with a logged message on failure.
  bool openFile(const QString& path);
  /// Saves to the current path (Save As when there is none).
  bool save();
  bool saveAs(const QString& path);
  /// Closes the project after asking about unsaved changes; shows the start page.
  bool closeProject();
  /// Opens a recovery copy of a never-saved project as an unsaved project.
  void restoreUntitled(const std::string& text);
  void showStartPage();
  void hideStartPage();

  // ---- issue commands (also reachable from menus) ----
  void validate();
  void showAssessment();
  void showExplanation();
  void evaluateParametric();
  /// Runs AI Generate with `prompt`; `backend` "offline" or "cloud".
  bool aiGenerate(const QString& prompt, const QString& backend);
  /// Writes the active diagram; format from the extension (svg, pdf, png, jpg).
  bool exportTo(const QString& path);
  void applyLanguage(const QString& code);
  void applyThemeKey(const QString& key);

  /// Logs a message through the output log (and the status bar).
  void logMessage(const QString& text);

  /// When false, questions that would open a dialog take their default
  /// answer (tests and benchmarks run without anyone to answer).
  void setInteractive(bool on) { interactive_ = on; }

 protected:
  void closeEvent(QCloseEvent*) override;

 private:
  // construction (main_window.cpp)
  void buildDocks();
  void retranslate();

  // commands (main_window_commands.cpp)
  struct Command {
    const CommandSpec* spec;
    int member;  // index in the row's family, else 0
    QAction* action;
    QByteArray textKey;  // empty: `fixedText` is shown as is
    QString fixedText;
  };
  void buildCommands();
  void runCommand(const Command& c);
  void updateCommandStates();
  void retranslateCommands();

  // project and files (main_window_files.cpp)
  void setSession(std::unique_ptr<ProjectSession> session);
  void activateModel(int index);
  bool maybeSave();
  void updateTitle();
  void updateRecentMenu();
  void onDocumentEdited();
  /// Commits typed input not yet committed (property fields, label editor).
  void commitPendingEdits();
  void onSelectionChanged();
  void openDialog();
  void saveAsDialog();
  void addModelDialog();
  void renameModel(int index);
  void deleteModel(int index);
  void undo();
  void redo();
  void renameSelection();
  void findDialog();
  void reveal(const QString& id);
  void showProperties();
  void showShortcuts();
  void showAbout();
  void showContextMenu(unsigned place, const QPoint& globalPos);

  // arrange (main_window_arrange.cpp)
  void align(int axis);
  void distribute(int axis);
  void flip(int axis);
  void group();
  void ungroup();
  void reorder(int which);

  // tools (main_window_tools.cpp)
  /// Validates and lists only the findings that name a selected element.
  void validateSelection();
  void showFindings(const QSet<QString>* only);
  void exportDialog(const QString& format);
  void aiGenerateDialog();
  void reviewDialog();
  void commandPalette();

  OutputLog* log_ = nullptr;
  std::unique_ptr<ProjectSession> session_;
  std::unique_ptr<ReviewSession> review_;
  std::unique_ptr<AutosaveManager> autosave_;
  QStackedWidget* stack_ = nullptr;
  StartPage* startPage_ = nullptr;
  CanvasView* canvas_ = nullptr;
  PalettePanel* palette_ = nullptr;
  PropertyPanel* properties_ = nullptr;
  ModelTree* modelTree_ = nullptr;
  LogPanel* logPanel_ = nullptr;
  FindingsPanel* findings_ = nullptr;
  QHash<QString, QDockWidget*> docks_;
  std::vector<Command> commands_;
  QHash<QString, QAction*> actions_;
  QHash<QString, QMenu*> menus_;
  QList<QPair<QMenu*, QByteArray>> menuKeys_;
  QMenu* recentMenu_ = nullptr;
  QLabel* zoomLabel_ = nullptr;
  QLabel* statusLabel_ = nullptr;
  QString aiPromptDraft_;
  bool interactive_ = true;
};

}  // namespace modelyne::shell
