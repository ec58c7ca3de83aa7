#include "shell/simulation_session.h"

#include <QSaveFile>
#include <algorithm>
#include <array>
#include <string_view>

#include "shell/i18n/strings.h"

namespace modelyne::shell {

namespace {

namespace sim = core::sim;

// Milliseconds between steps at 1x.
constexpr int kBaseInterval = 800;

// The log key of each event, per kind of simulation; empty: not logged.
struct LogKeys {
  sim::EventKind event;
  std::string_view activity;
  std::string_view sequence;
  std::string_view stateMachine;
};

constexpr std::array<LogKeys, 10> kLogKeys{{
    {sim::EventKind::start, "ui.log.act_start", "", ""},
    {sim::EventKind::fire, "ui.log.act_fire", "", ""},
    {sim::EventKind::decide, "ui.log.act_decide", "", "ui.log.stm_decide"},
    {sim::EventKind::final, "ui.log.act_final", "", ""},
    {sim::EventKind::flowFinal, "ui.log.act_flow_final", "", ""},
    {sim::EventKind::message, "", "ui.log.seq_message", ""},
    {sim::EventKind::skip, "", "ui.log.seq_skip", "ui.log.stm_skip"},
    {sim::EventKind::enter, "", "ui.log.seq_enter", "ui.log.stm_enter"},
    {sim::EventKind::transition, "", "", "ui.log.stm_transition"},
    {sim::EventKind::stall, "ui.log.act_stall", "", "ui.log.stm_stall"},
}};

// The end line's key per kind and status (completed, stalled, limit).
constexpr std::array<std::array<std::string_view, 3>, 3> kEndKeys{{
    {"ui.log.act_end_completed", "ui.log.act_end_stalled", "ui.log.act_end_limit"},
    {"ui.log.seq_end_completed", "ui.log.seq_end_completed", "ui.log.seq_end_limit"},
    {"ui.log.stm_end_completed", "ui.log.stm_end_stalled", "ui.log.stm_end_limit"},
}};

QString joined(const std::vector<std::string>& ids) {
  QStringList out;
  for (const std::string& id : ids) out << QString::fromStdString(id);
  return out.isEmpty() ? QStringLiteral("-") : out.join(QStringLiteral(", "));
}

QString q(const std::string& s) { return s.empty() ? QStringLiteral("-") : QString::fromStdString(s); }

}  // namespace

SimulationSession::SimulationSession(QObject* parent) : QObject(parent) {
  timer_.setInterval(interval());
  connect(&timer_, &QTimer::timeout, this, [this] {
    if (pausesBefore() || !step()) pause();
  });
}

SimulationSession::~SimulationSession() = default;

void SimulationSession::open(const core::Document& doc, core::sim::SimulationOptions options) {
  close();
  // The simulation reads a copy: the document stays as it is, whatever
  // happens to it meanwhile.
  nodes_ = doc.nodes();
  edges_ = doc.edges();
  options.sink = nullptr;
  sim_ = sim::makeSimulation(doc.frame().kind, nodes_, edges_, std::move(options));
  emit changed();
}

void SimulationSession::close() {
  timer_.stop();
  sim_.reset();
  nodes_.clear();
  edges_.clear();
  active_.clear();
  visited_.clear();
  lastVisited_.clear();
  emit changed();
}

// A pending decision the user should answer pauses the run before the step.
bool SimulationSession::pausesBefore() {
  if (!sim_ || !ask_) return false;
  const std::vector<std::string> pending = sim_->pendingDecisions();
  if (pending.empty()) return false;
  QStringList outgoing;
  for (const core::Edge& e : edges_)
    if (e.source == pending.front()) outgoing << QString::fromStdString(e.id);
  emit decisionNeeded(QString::fromStdString(pending.front()), outgoing);
  return true;
}

bool SimulationSession::step() {
  if (!sim_ || sim_->finished()) return false;
  if (pausesBefore()) return true;
  const std::size_t before = sim_->trace().size();
  const bool more = sim_->step();
  afterStep(before);
  return more;
}

void SimulationSession::afterStep(std::size_t firstNew) {
  const auto& trace = sim_->trace();
  lastVisited_.clear();
  bool atBreakpoint = false;
  for (std::size_t i = firstNew; i < trace.size(); ++i) {
    const sim::TraceEvent& e = trace[i];
    emit logged(logLine(sim_->kind(), e));
    for (const std::string* id : {&e.node, &e.edge, &e.from, &e.to, &e.chosen})
      if (!id->empty() && e.kind != sim::EventKind::skip) {
        lastVisited_.insert(*id);
        visited_.insert(*id);
        atBreakpoint = atBreakpoint || breakpoints_.contains(*id);
      }
    for (const auto* list : {&e.in, &e.out})
      for (const std::string& id : *list) {
        lastVisited_.insert(id);
        visited_.insert(id);
      }
  }
  const sim::Marking m = sim_->marking();
  active_.clear();
  for (const auto* list : {&m.activeNodes, &m.activeEdges, &m.activeStates}) active_.insert(list->begin(), list->end());
  for (const auto& [flow, count] : m.tokens) active_.insert(flow);
  if (atBreakpoint || sim_->finished()) timer_.stop();
  emit changed();
}

void SimulationSession::run() {
  if (!sim_ || sim_->finished()) return;
  timer_.setInterval(interval());
  timer_.start();
  emit changed();
}

void SimulationSession::pause() {
  timer_.stop();
  emit changed();
}

void SimulationSession::setSpeed(double factor) {
  speed_ = std::clamp(factor, 0.5, 2.0);
  timer_.setInterval(interval());
}

int SimulationSession::interval() const noexcept { return static_cast<int>(kBaseInterval / speed_); }

void SimulationSession::reset() {
  timer_.stop();
  if (sim_) sim_->reset();
  active_.clear();
  visited_.clear();
  lastVisited_.clear();
  emit changed();
}

void SimulationSession::toggleBreakpoint(const std::string& nodeId) {
  if (!breakpoints_.erase(nodeId)) breakpoints_.insert(nodeId);
  emit changed();
}

bool SimulationSession::choose(const std::string& nodeId, const std::string& edgeId) {
  return sim_ && sim_->choose(nodeId, edgeId);
}

std::string SimulationSession::traceText(bool jsonl) const {
  std::string out;
  if (!sim_) return out;
  for (const sim::TraceEvent& e : sim_->trace()) out += jsonl ? sim::formatJsonLine(e) : sim::formatTextLine(e);
  return out;
}

bool SimulationSession::exportTrace(const QString& path, bool jsonl, QString* error) const {
  QSaveFile file(path);
  const std::string bytes = traceText(jsonl);
  if (file.open(QIODevice::WriteOnly) &&
      file.write(bytes.data(), static_cast<qint64>(bytes.size())) == static_cast<qint64>(bytes.size()) &&
      file.commit())
    return true;
  if (error) *error = file.errorString();
  return false;
}

QString SimulationSession::logLine(core::sim::SimulationKind kind, const core::sim::TraceEvent& e) {
  const auto k = static_cast<std::size_t>(kind);
  const QString step = QString::number(e.step);
  if (e.kind == sim::EventKind::end) {
    const std::size_t s = e.status == sim::RunStatus::stalled ? 1 : e.status == sim::RunStatus::limit ? 2 : 0;
    // Only tokens can wait: the activity's stall and limit lines name them.
    if (kind == sim::SimulationKind::activity && s > 0) return ui(kEndKeys[k][s]).arg(step, joined(e.waiting));
    return ui(kEndKeys[k][s]).arg(step);
  }
  std::string_view key;
  for (const LogKeys& l : kLogKeys)
    if (l.event == e.kind) key = k == 0 ? l.activity : k == 1 ? l.sequence : l.stateMachine;
  if (key.empty()) return QString::fromStdString(sim::formatTextLine(e)).trimmed();
  const QString detail = q(e.detail);
  const std::string_view reason = sim::decideReasonKey(e.reason);
  switch (e.kind) {
    case sim::EventKind::decide:
      return ui(key).arg(step, q(e.node), q(e.chosen), q(std::string(reason)), detail);
    case sim::EventKind::final: return ui(key).arg(step, q(e.node), joined(e.destroyed));
    case sim::EventKind::flowFinal: return ui(key).arg(step, q(e.node), joined(e.in));
    case sim::EventKind::message:
    case sim::EventKind::transition: return ui(key).arg(step, q(e.from), q(e.to), q(e.edge), detail);
    case sim::EventKind::skip: return ui(key).arg(step, q(e.edge.empty() ? e.node : e.edge), detail);
    case sim::EventKind::enter:
    case sim::EventKind::stall: return ui(key).arg(step, q(e.node), detail);
    default: return ui(key).arg(step, q(e.node), joined(e.in), joined(e.out));
  }
}

}  // namespace modelyne::shell
