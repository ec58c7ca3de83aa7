#include "shell/project_session.h"

#include <QFileInfo>
#include <algorithm>

#include "io/atomic_file.h"
#include "io/model_file.h"
#include "io/project_file.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

// The frame's element type per diagram kind, as a modeller reads the header
// "bdd [package] Model".
constexpr const char* kFrameElementType[core::kDiagramKindCount] = {
    "package", "block", "package", "block", "activity", "interaction",
    "stateMachine", "package", "package", "package", "mindMap"};

std::string utf8(const QString& s) { return s.toStdString(); }

}  // namespace

std::string emptyDiagramXml(core::DiagramKind kind) {
  const int k = static_cast<int>(kind);
  std::string xml =
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<diagram formatVersion=\"1.0\" appVersion=\"0.1.0-win\" xmlns=\"modelyne:diagram\">\n"
      "  <DiagramFrame kind=\"";
  xml += core::diagramKindKey(kind);
  xml += "\" elementType=\"";
  xml += kFrameElementType[k >= 0 && k < core::kDiagramKindCount ? k : 2];
  xml += "\" elementName=\"Model\" name=\"\" show=\"true\"/>\n</diagram>\n";
  return xml;
}

ProjectSession::~ProjectSession() {
  for (ModelDoc& m : models_) bridge::destroyDocument(m.doc);
}

ProjectSession::ModelDoc ProjectSession::makeModel(core::DiagramKind kind) {
  ModelDoc m;
  int n = 1;
  auto taken = [&](const std::string& id) {
    return std::any_of(models_.begin(), models_.end(), [&](const ModelDoc& o) { return o.model.id == id; });
  };
  while (taken("model" + std::to_string(n))) ++n;
  m.model.id = "model" + std::to_string(n);
  m.model.name = utf8(ui(core::diagramKindMessageKey(kind)));
  m.doc = bridge::createDocument();
  bridge::loadDiagramXml(m.doc, emptyDiagramXml(kind));
  return m;
}

std::unique_ptr<ProjectSession> ProjectSession::createNew(core::DiagramKind kind) {
  std::unique_ptr<ProjectSession> s(new ProjectSession);
  s->name_ = "Untitled";
  s->models_.push_back(s->makeModel(kind));
  return s;
}

namespace {

// A diagnostic as the editor shows it: "line N: WHAT" (the file is the one opened).
QString placed(const io::Diagnostic& d) {
  const QString what = QString::fromStdString(d.what);
  return d.line > 0 ? QStringLiteral("line %1: %2").arg(d.line).arg(what) : what;
}

}  // namespace

std::unique_ptr<ProjectSession> ProjectSession::fromOpened(io::OpenedModelFile opened, QString* error) {
  if (opened.error) {
    if (error) *error = placed(*opened.error);
    return nullptr;
  }
  std::unique_ptr<ProjectSession> s(new ProjectSession);
  for (const io::Diagnostic& w : opened.warnings) s->openLog_.append(ui(io::kLogLoadSkipped).arg(placed(w)));
  for (const io::LogLine& line : opened.log) {
    QString text = ui(line.key);
    if (text == QString::fromStdString(line.key)) {
      text = QString::fromStdString(line.text);
    } else {
      for (const std::string& a : line.args) text = text.arg(QString::fromStdString(a));
    }
    s->openLog_.append(text);
  }
  core::Project& project = opened.project;
  s->name_ = project.name;
  // The documents were read by the open itself; the session takes them over.
  for (std::size_t i = 0; i < project.models.size(); ++i) {
    ModelDoc m;
    m.model = std::move(project.models[i]);
    m.doc = opened.documents[i].release();
    s->models_.push_back(std::move(m));
    // Loading cleared the history, so the document is at its saved state.
    s->models_.back().doc->history().markSaved();
  }
  if (s->models_.empty()) s->models_.push_back(s->makeModel(core::DiagramKind::pkg));
  s->active_ = std::clamp(project.active, 0, static_cast<int>(s->models_.size()) - 1);
  return s;
}

std::unique_ptr<ProjectSession> ProjectSession::fromText(const std::string& text, QString* error) {
  return fromOpened(io::openModelText(text), error);
}

std::unique_ptr<ProjectSession> ProjectSession::open(const QString& path, QString* error) {
  io::OpenOptions options;
  options.migrateSidecar = true;
  auto s = fromOpened(io::openModelFile(path.toStdString(), options), error);
  if (s) {
    s->path_ = path;
    if (s->name_.empty()) s->name_ = utf8(QFileInfo(path).completeBaseName());
  }
  return s;
}

std::string ProjectSession::serialize() const {
  core::Project project;
  project.name = name_;
  project.active = active_;
  for (const ModelDoc& m : models_) {
    core::Model model = m.model;
    model.diagramXml = bridge::saveDiagramXml(m.doc);
    model.frame = m.doc->frame();
    project.models.push_back(std::move(model));
  }
  return io::serializeProject(project, *document());
}

bool ProjectSession::saveAs(const QString& path, QString* error) {
  std::string err;
  if (!io::writeFileAtomic(path.toStdString(), serialize(), &err)) {
    if (error) *error = QString::fromStdString(err);
    return false;
  }
  path_ = path;
  for (ModelDoc& m : models_) m.doc->history().markSaved();
  directEdits_ = false;
  structureChanged_ = false;
  return true;
}

bool ProjectSession::modified() const {
  if (directEdits_ || structureChanged_) return true;
  return std::any_of(models_.begin(), models_.end(),
                     [](const ModelDoc& m) { return !m.doc->history().atSavedState(); });
}

void ProjectSession::setActive(int index) {
  if (index >= 0 && index < modelCount()) active_ = index;
}

core::DiagramKind ProjectSession::kind() const { return document()->frame().kind; }

int ProjectSession::addModel(core::DiagramKind kind) {
  models_.push_back(makeModel(kind));
  active_ = modelCount() - 1;
  structureChanged_ = true;
  return active_;
}

void ProjectSession::renameModel(int index, const QString& name) {
  if (index < 0 || index >= modelCount()) return;
  models_[static_cast<std::size_t>(index)].model.name = utf8(name);
  structureChanged_ = true;
}

bool ProjectSession::deleteModel(int index) {
  if (modelCount() <= 1 || index < 0 || index >= modelCount()) return false;
  bridge::destroyDocument(models_[static_cast<std::size_t>(index)].doc);
  models_.erase(models_.begin() + index);
  if (active_ >= index && active_ > 0) --active_;
  structureChanged_ = true;
  return true;
}

}  // namespace modelyne::shell
