#pragma once
/// ProjectSession: the open project of the editor. It owns one Document per
/// model (reached through bridge handles), the file path, and the
/// modified-since-save state. Undoable edits are noticed through each
/// document's history; the direct edge edits, which bypass the history, are
/// reported with `markDirectEdit`. Loading and saving go through the model
/// file functions of io; nothing here edits a document except through the
/// bridge.

#include <QString>
#include <QStringList>
#include <memory>
#include <vector>

#include "bridge/bridge.h"
#include "core/diagram_kind.h"
#include "core/project.h"
#include "io/model_file.h"

namespace modelyne::shell {

class ProjectSession {
 public:
  ~ProjectSession();
  ProjectSession(const ProjectSession&) = delete;
  ProjectSession& operator=(const ProjectSession&) = delete;

  /// A new project of one empty model of the kind.
  static std::unique_ptr<ProjectSession> createNew(core::DiagramKind kind);
  /// Reads a model file (bare diagram or project wrapper). Nothing on
  /// failure, with the reason in `error`.
  static std::unique_ptr<ProjectSession> open(const QString& path, QString* error);
  /// Reads model-file text (used by open and by crash recovery).
  static std::unique_ptr<ProjectSession> fromText(const std::string& text, QString* error);

  /// The text that Save writes (bare diagram for one model, wrapper otherwise).
  std::string serialize() const;
  /// Writes the file atomically; on success remembers the path and clears
  /// the modified state.
  bool saveAs(const QString& path, QString* error);

  /// What reading the file reported (migrations, skipped elements), translated.
  const QStringList& openLog() const noexcept { return openLog_; }
  const QString& path() const noexcept { return path_; }
  void setPath(const QString& path) { path_ = path; }
  bool modified() const;
  void markDirectEdit() { directEdits_ = true; }

  // ---- models ----
  int modelCount() const noexcept { return static_cast<int>(models_.size()); }
  int activeIndex() const noexcept { return active_; }
  void setActive(int index);
  const core::Model& model(int index) const { return models_.at(static_cast<std::size_t>(index)).model; }
  bridge::DocumentHandle document(int index) const { return models_.at(static_cast<std::size_t>(index)).doc; }
  bridge::DocumentHandle document() const { return document(active_); }
  /// The active diagram's kind.
  core::DiagramKind kind() const;
  /// Adds an empty model of the kind after the others and makes it active.
  int addModel(core::DiagramKind kind);
  void renameModel(int index, const QString& name);
  /// False (and nothing changes) when it is the last model.
  bool deleteModel(int index);

 private:
  struct ModelDoc {
    core::Model model;
    bridge::DocumentHandle doc = nullptr;
  };

  ProjectSession() = default;
  static std::unique_ptr<ProjectSession> fromOpened(io::OpenedModelFile opened, QString* error);
  ModelDoc makeModel(core::DiagramKind kind);

  std::string name_;
  std::vector<ModelDoc> models_;
  int active_ = 0;
  QString path_;
  QStringList openLog_;
  bool directEdits_ = false;
  bool structureChanged_ = false;  // models added, renamed or deleted
};

/// An empty diagram text of the kind, with its frame line.
std::string emptyDiagramXml(core::DiagramKind kind);

}  // namespace modelyne::shell
