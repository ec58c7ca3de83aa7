#include "shell/review_session.h"

#include "bridge/review.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

QString describe(const core::Document& doc, const ReviewSession::Entry& e) {
  if (e.edge) {
    const core::Edge* edge = doc.findEdge(e.id);
    if (!edge) return QString::fromStdString(e.id);
    auto name = [&](const std::string& id) {
      const core::Node* n = doc.findNode(id);
      return QString::fromStdString(n && !n->text.empty() ? n->text : id);
    };
    return ui("ui.review.edge_line")
        .arg(ui("ui.edge.type." + std::to_string(static_cast<int>(edge->type))), name(edge->source), name(edge->target));
  }
  const core::Node* n = doc.findNode(e.id);
  if (!n) return QString::fromStdString(e.id);
  return ui("ui.review.node_line")
      .arg(ui("ui.shape.type." + std::to_string(static_cast<int>(n->type))),
           QString::fromStdString(n->text.empty() ? n->id : n->text));
}

}  // namespace

void ReviewSession::start(bridge::DocumentHandle doc, const std::vector<std::string>& nodeIds,
                          const std::vector<std::string>& edgeIds) {
  clear();
  doc_ = doc;
  for (const auto& id : nodeIds) entries_.push_back({id, false, std::string(bridge::kCandidateRule), State::undecided, {}});
  for (const auto& id : edgeIds) entries_.push_back({id, true, std::string(bridge::kCandidateRule), State::undecided, {}});
  refresh();
}

void ReviewSession::clear() {
  doc_ = nullptr;
  entries_.clear();
  records_.clear();
}

void ReviewSession::refresh() {
  if (!doc_) return;
  std::vector<Entry> kept;
  for (Entry e : entries_) {
    const bool exists = e.edge ? doc_->findEdge(e.id) != nullptr : doc_->findNode(e.id) != nullptr;
    if (!exists) {
      // Gone by a discard: shown as discarded; gone because the generation
      // itself was undone: no longer a candidate at all.
      if (e.state == State::discard) kept.push_back(e);
      continue;
    }
    if (!e.edge) {
      const core::Node* n = doc_->findNode(e.id);
      auto it = n->properties.find(std::string(bridge::kReviewDecisionKey));
      const std::string d = it == n->properties.end() ? std::string() : it->second;
      e.state = d == "ACCEPT" ? State::accept : d == "MODIFY" ? State::modify : State::undecided;
    } else if (e.state == State::discard) {
      e.state = State::undecided;  // the discard was undone
    }
    e.ruleId = e.state == State::undecided || e.state == State::modify ? std::string(bridge::kCandidateRule) : std::string();
    e.description = describe(*doc_, e);
    kept.push_back(std::move(e));
  }
  entries_ = std::move(kept);
}

QString ReviewSession::mark(State s) {
  switch (s) {
    case State::accept: return QStringLiteral("[Accept ] ");
    case State::modify: return QStringLiteral("[Modify ] ");
    case State::discard: return QStringLiteral("[Discard] ");
    case State::undecided: break;
  }
  return QStringLiteral("[?      ] ");
}

QString ReviewSession::line(std::size_t index) const {
  const Entry& e = entries_.at(index);
  return mark(e.state) + e.description;
}

std::size_t ReviewSession::undecidedCount() const {
  std::size_t n = 0;
  for (const Entry& e : entries_) n += e.state == State::undecided || e.state == State::modify;
  return n;
}

std::string ReviewSession::decide(std::size_t index, const std::string& decision) {
  Entry& e = entries_.at(index);
  const bridge::ReviewDecision d{e.id, e.edge, decision};
  const std::vector<std::string> r = bridge::recordReviewDecisions(doc_, std::span(&d, 1));
  if (decision == "DISCARD") e.state = State::discard;
  if (e.edge && decision == "ACCEPT") e.state = State::accept;
  if (e.edge && decision == "MODIFY") e.state = State::modify;
  records_.append(QString::fromStdString(r.front()));
  refresh();
  return r.front();
}

std::vector<std::string> ReviewSession::decideAll(const std::string& decision) {
  std::vector<bridge::ReviewDecision> ds;
  for (const Entry& e : entries_)
    if (e.state == State::undecided || e.state == State::modify) ds.push_back({e.id, e.edge, decision});
  const std::vector<std::string> r = bridge::recordReviewDecisions(doc_, ds);
  for (Entry& e : entries_) {
    if (e.state != State::undecided && e.state != State::modify) continue;
    if (decision == "DISCARD") e.state = State::discard;
    else if (e.edge) e.state = decision == "ACCEPT" ? State::accept : State::modify;
  }
  for (const std::string& rec : r) records_.append(QString::fromStdString(rec));
  refresh();
  return r;
}

}  // namespace modelyne::shell
