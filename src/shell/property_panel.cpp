#include "shell/property_panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QTimer>
#include <QVBoxLayout>

#include "io/property_schema.h"
#include "shell/i18n/strings.h"
#include "shell/text_guard.h"

namespace modelyne::shell {
namespace {

constexpr const char* kColourNames[] = {"blue", "red", "green", "yellow", "orange", "purple"};
constexpr const char* kAnchorKeys[] = {"top", "bottom", "left", "right", "topLeft", "topRight", "bottomLeft", "bottomRight"};

QString q(const std::string& s) { return QString::fromStdString(s); }

/// A multi-line field that commits when it loses the focus and on
/// Ctrl+Enter (Enter alone starts a new line).
class CommitTextEdit : public QPlainTextEdit {
 public:
  std::function<void(const QString&)> onCommit;
  explicit CommitTextEdit(QWidget* parent) : QPlainTextEdit(parent) { keepControlCharactersOut(this); }

  void commit() {
    if (onCommit && document()->isModified()) {
      document()->setModified(false);
      onCommit(withoutControlCharacters(toPlainText()));
    }
  }
  /// Shows `text` unless the user's input is waiting to be committed.
  void load(const QString& text) {
    if (document()->isModified() || toPlainText() == text) return;
    setPlainText(text);
    document()->setModified(false);
  }

 protected:
  void focusOutEvent(QFocusEvent* e) override {
    QPlainTextEdit::focusOutEvent(e);
    commit();
  }
  void keyPressEvent(QKeyEvent* e) override {
    if ((e->key() == Qt::Key_Return || e->key() == Qt::Key_Enter) && (e->modifiers() & Qt::ControlModifier)) {
      commit();
      return;
    }
    QPlainTextEdit::keyPressEvent(e);
  }
};

/// Shows `text` in a line edit unless the user's input is waiting there.
void loadLine(QLineEdit* e, const QString& text) {
  if (!e->isModified() && e->text() != text) e->setText(text);
}

void selectData(QComboBox* c, const QVariant& data, const QString& textIfMissing) {
  const QSignalBlocker block(c);
  int i = c->findData(data);
  if (i < 0) {
    c->addItem(textIfMissing, data);  // a value from a file, kept as is
    i = c->count() - 1;
  }
  c->setCurrentIndex(i);
}

bool needsValidation(io::ValueKind k) {
  return k == io::ValueKind::multiplicity || k == io::ValueKind::integer || k == io::ValueKind::identifier ||
         k == io::ValueKind::number;
}

}  // namespace

PropertyPanel::PropertyPanel(QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  title_ = new QLabel(this);
  title_->setObjectName(QStringLiteral("propertyTitle"));
  title_->setWordWrap(true);
  QFont f = title_->font();
  f.setBold(true);
  title_->setFont(f);
  scroll_ = new QScrollArea(this);
  scroll_->setWidgetResizable(true);
  scroll_->setFrameShape(QFrame::NoFrame);
  layout->addWidget(title_);
  layout->addWidget(scroll_, 1);
  rebuild();
}

void PropertyPanel::showElement(bridge::DocumentHandle doc, const QString& id) {
  doc_ = doc;
  id_ = id;
  refreshPending_ = false;
  rebuildPending_ = false;
  rebuild();
}

void PropertyPanel::refresh() {
  // Deferred: the change may come from one of the panel's own fields, which
  // must outlive the signal that reported it.
  if (refreshPending_) return;
  refreshPending_ = true;
  QTimer::singleShot(0, this, [this] {
    if (!refreshPending_) return;  // rebuilt meanwhile
    refreshPending_ = false;
    if (rebuildPending_ || layoutOf() != layout_) rebuild();
    else reload();
  });
}

void PropertyPanel::retranslate() {
  rebuildPending_ = true;
  refresh();
}

void PropertyPanel::commitPending() {
  if (rebuilding_) return;
  // A commit refreshes the panel later; the list stays as it is until then.
  for (std::size_t i = 0; i < fields_.size(); ++i)
    if (fields_[i].commit) fields_[i].commit();
}

void PropertyPanel::focusFirstField() {
  if (!body_) return;
  for (QWidget* w : body_->findChildren<QWidget*>())
    if (w->objectName().startsWith(QLatin1String("prop_"))) {
      w->setFocus();
      return;
    }
}

void PropertyPanel::reload() {
  const bool outer = rebuilding_;
  rebuilding_ = true;  // loading a field is not an edit
  for (const Field& f : fields_) f.load();
  rebuilding_ = outer;
}

QString PropertyPanel::layoutOf() const {
  if (!doc_ || id_.isEmpty()) return {};
  const std::string id = id_.toStdString();
  if (const core::Node* n = doc_->findNode(id)) {
    QString out = QStringLiteral("node %1").arg(static_cast<int>(n->type));
    for (const auto& [k, v] : n->properties)
      if (!io::findProperty(n->type, k)) out += QLatin1Char(' ') + q(k);  // rows of unknown keys
    return out;
  }
  return doc_->findEdge(id) ? QStringLiteral("edge") : QString();
}

void PropertyPanel::addField(std::function<void()> load, std::function<void()> commit) {
  fields_.push_back({std::move(load), std::move(commit)});
}

QString PropertyPanel::errorFor(const QString& key) const {
  if (!body_) return {};
  auto* label = body_->findChild<QLabel*>(QStringLiteral("error_") + key);
  return label ? label->text() : QString();
}

void PropertyPanel::setError(const QString& key, const QString& text) {
  if (!body_) return;
  if (auto* label = body_->findChild<QLabel*>(QStringLiteral("error_") + key)) {
    label->setText(text);
    label->setVisible(!text.isEmpty());
  }
}

template <class F>
bool PropertyPanel::apply(const QString& key, F&& f) {
  if (!doc_ || rebuilding_) return false;
  try {
    f();
  } catch (const bridge::BridgeError& e) {
    setError(key, QString::fromUtf8(e.what()));
    emit message(QString::fromUtf8(e.what()));
    return false;
  }
  setError(key, {});
  refresh();
  return true;
}

void PropertyPanel::addRow(const QString& label, QWidget* field, const QString& key) {
  if (key.isEmpty()) {
    form_->addRow(label, field);
    return;
  }
  auto* box = new QWidget(body_);
  auto* v = new QVBoxLayout(box);
  v->setContentsMargins(0, 0, 0, 0);
  v->setSpacing(1);
  v->addWidget(field);
  auto* error = new QLabel(box);
  error->setObjectName(QStringLiteral("error_") + key);
  error->setStyleSheet(QStringLiteral("color: #C62828;"));
  error->setWordWrap(true);
  error->hide();
  v->addWidget(error);
  form_->addRow(label, box);
}

void PropertyPanel::rebuild() {
  rebuilding_ = true;
  rebuildPending_ = false;
  fields_.clear();
  layout_ = layoutOf();
  body_ = new QWidget;
  form_ = new QFormLayout(body_);
  form_->setFieldGrowthPolicy(QFormLayout::AllNonFixedFieldsGrow);
  form_->setLabelAlignment(Qt::AlignLeft);
  const std::string id = id_.toStdString();
  if (!doc_ || id.empty()) {
    title_->setText(ui("ui.props.none"));
  } else if (const core::Node* n = doc_->findNode(id)) {
    buildNode(*n);
  } else if (const core::Edge* e = doc_->findEdge(id)) {
    buildEdge(*e);
  } else {
    title_->setText(ui("ui.props.none"));
  }
  scroll_->setWidget(body_);  // deletes the previous body
  rebuilding_ = false;
}

void PropertyPanel::buildNode(const core::Node& node) {
  const std::string id = node.id;
  title_->setText(ui("ui.props.node_title")
                      .arg(ui("ui.shape.type." + std::to_string(static_cast<int>(node.type))), q(id)));
  // The node as it is now (fields are loaded again after every change).
  auto current = [this, id]() -> const core::Node* { return doc_ ? doc_->findNode(id) : nullptr; };
  auto valueOf = [current](const std::string& key) {
    const core::Node* n = current();
    if (!n) return std::string();
    auto it = n->properties.find(key);
    return it == n->properties.end() ? std::string() : it->second;
  };

  auto* text = new CommitTextEdit(body_);
  text->setObjectName(QStringLiteral("prop_text"));
  text->setTabChangesFocus(true);
  text->setFixedHeight(54);
  text->onCommit = [this, id](const QString& v) {
    apply(QStringLiteral("text"), [&] { bridge::setNodeText(doc_, id, v.toStdString()); }) && (emit edited(), true);
  };
  addField([text, current] { if (const core::Node* n = current()) text->load(q(n->text)); }, [text] { text->commit(); });
  addRow(ui("ui.props.text"), text, QStringLiteral("text"));

  auto* colour = new QComboBox(body_);
  colour->setObjectName(QStringLiteral("prop_fillColor"));
  colour->addItem(ui("ui.color.none"), QString());
  for (const char* c : kColourNames) colour->addItem(ui(std::string("ui.color.") + c), QLatin1String(c));
  connect(colour, &QComboBox::activated, this, [this, id, colour](int) {
    const std::string v = colour->currentData().toString().toStdString();
    apply(QStringLiteral("fillColor"), [&] { bridge::setNodeColor(doc_, id, v); }) && (emit edited(), true);
  });
  addField([colour, current] {
    if (const core::Node* n = current()) selectData(colour, q(n->fillColor), q(n->fillColor));
  });
  addRow(ui("ui.props.fill"), colour, QStringLiteral("fillColor"));

  auto* di = new QCheckBox(body_);
  di->setObjectName(QStringLiteral("prop_dataIntegration"));
  connect(di, &QCheckBox::toggled, this, [this, id](bool on) {
    apply(QStringLiteral("dataIntegration"), [&] { bridge::setNodeDataIntegration(doc_, id, on); }) &&
        (emit edited(), true);
  });
  addField([di, current] {
    const QSignalBlocker block(di);
    if (const core::Node* n = current()) di->setChecked(n->dataIntegration);
  });
  addRow(ui("ui.props.data_integration"), di, QStringLiteral("dataIntegration"));

  for (const io::PropertyDef& def : io::schemaFor(node.type)) {
    const QString key = q(def.key);
    const std::string k = def.key;
    auto store = [this, id, k, key](const QString& v) {
      const bool ok = apply(key, [&] { bridge::setNodeProperty(doc_, id, k, v.toStdString()); });
      if (ok) emit edited();
      return ok;
    };
    QWidget* field = nullptr;
    switch (def.kind) {
      case io::ValueKind::multiLineText: {
        auto* e = new CommitTextEdit(body_);
        e->setPlaceholderText(q(def.hint));
        e->setTabChangesFocus(true);
        e->setFixedHeight(64);
        e->onCommit = store;
        addField([e, valueOf, k] { e->load(q(valueOf(k))); }, [e] { e->commit(); });
        field = e;
        break;
      }
      case io::ValueKind::boolean: {
        auto* c = new QCheckBox(body_);
        connect(c, &QCheckBox::toggled, this,
                [store](bool on) { store(on ? QStringLiteral("true") : QStringLiteral("false")); });
        addField([c, valueOf, k] {
          const QSignalBlocker block(c);
          c->setChecked(valueOf(k) == "true");
        });
        field = c;
        break;
      }
      case io::ValueKind::choice: {
        auto* c = new QComboBox(body_);
        c->addItem(QString(), QString());
        for (const std::string& choice : def.choices) c->addItem(q(choice), q(choice));
        connect(c, &QComboBox::activated, this, [store, c](int) { store(c->currentText()); });
        addField([c, valueOf, k] { selectData(c, q(valueOf(k)), q(valueOf(k))); });
        field = c;
        break;
      }
      default: {
        auto* e = new QLineEdit(body_);
        e->setPlaceholderText(q(def.hint));
        keepControlCharactersOut(e);
        if (needsValidation(def.kind)) {
          // Say what is wrong while typing; storing is refused by the bridge.
          connect(e, &QLineEdit::textEdited, this, [this, def, key](const QString& v) {
            std::string why;
            setError(key, io::validateValue(def, v.toStdString(), why) ? QString() : q(why));
          });
        }
        auto commit = [e, store, k, current] {
          if (!e->isModified()) return;
          e->setModified(false);
          const core::Node* n = current();
          if (!n) return;
          auto it = n->properties.find(k);
          if (it == n->properties.end() ? e->text().isEmpty() : e->text().toStdString() == it->second) return;
          if (!store(withoutControlCharacters(e->text()))) e->setModified(true);  // refused: the input stays, with the reason beside it
        };
        connect(e, &QLineEdit::editingFinished, this, commit);
        addField([e, valueOf, k] { loadLine(e, q(valueOf(k))); }, commit);
        field = e;
        break;
      }
    }
    field->setObjectName(QStringLiteral("prop_") + key);
    QString tip = q(def.hint);
    if (!def.source.empty()) tip += (tip.isEmpty() ? QString() : QStringLiteral("\n")) + q(def.source);
    field->setToolTip(tip);
    addRow(q(def.label), field, key);
  }

  // Properties from the file that no schema entry names: shown, not editable.
  for (const auto& [k, v] : node.properties) {
    if (io::findProperty(node.type, k)) continue;
    auto* e = new QLineEdit(body_);
    e->setReadOnly(true);
    e->setObjectName(QStringLiteral("prop_") + q(k));
    e->setToolTip(ui("ui.props.unknown_hint"));
    addField([e, valueOf, key = k] { e->setText(q(valueOf(key))); });
    addRow(q(k), e);
  }
  reload();
}

void PropertyPanel::buildEdge(const core::Edge& edge) {
  const std::string id = edge.id;
  title_->setText(ui("ui.props.edge_title").arg(q(id), q(edge.source), q(edge.target)));
  auto current = [this, id]() -> const core::Edge* { return doc_ ? doc_->findEdge(id) : nullptr; };

  auto* type = new QComboBox(body_);
  type->setObjectName(QStringLiteral("prop_edgeType"));
  for (const auto& info : core::edgeCatalogue())
    type->addItem(ui("ui.edge.type." + std::to_string(static_cast<int>(info.type))), static_cast<int>(info.type));
  connect(type, &QComboBox::activated, this, [this, id, type](int) {
    const auto t = static_cast<core::EdgeType>(type->currentData().toInt());
    bool changed = false;
    apply(QStringLiteral("edgeType"), [&] { changed = bridge::setEdgeTypeUndoable(doc_, id, t); });
    if (changed) emit edited();
  });
  addField([type, current] {
    if (const core::Edge* e = current())
      selectData(type, static_cast<int>(e->type), QString::number(static_cast<int>(e->type)));
  });
  addRow(ui("ui.props.edge_type"), type, QStringLiteral("edgeType"));

  auto* label = new QLineEdit(body_);
  label->setObjectName(QStringLiteral("prop_label"));
  keepControlCharactersOut(label);
  auto commitLabel = [this, id, label] {
    if (!label->isModified()) return;
    label->setModified(false);
    bool changed = false;
    apply(QStringLiteral("label"), [&] { changed = bridge::setEdgeTextUndoable(doc_, id, withoutControlCharacters(label->text()).toStdString()); });
    if (changed) emit edited();
  };
  connect(label, &QLineEdit::editingFinished, this, commitLabel);
  addField([label, current] { if (const core::Edge* e = current()) loadLine(label, q(e->text)); }, commitLabel);
  addRow(ui("ui.props.label"), label, QStringLiteral("label"));

  for (int end = 0; end < 2; ++end) {
    const bool source = end == 0;
    auto* port = new QComboBox(body_);
    port->setObjectName(source ? QStringLiteral("prop_sourcePort") : QStringLiteral("prop_targetPort"));
    for (int a = 0; a < 8; ++a) port->addItem(ui(std::string("ui.port.") + kAnchorKeys[a]), a);
    connect(port, &QComboBox::activated, this, [this, id, source, port, current](int) {
      const core::Edge* e = current();
      if (!e) return;
      const std::string node = source ? e->source : e->target;
      const auto a = static_cast<core::Anchor>(port->currentData().toInt());
      bool changed = false;
      apply(source ? QStringLiteral("sourcePort") : QStringLiteral("targetPort"),
            [&] { changed = bridge::reconnectEdgeUndoable(doc_, id, source, node, a); });
      if (changed) emit edited();
    });
    addField([port, current, source] {
      if (const core::Edge* e = current())
        selectData(port, static_cast<int>(source ? e->sourcePort : e->targetPort), QString());
    });
    addRow(ui(source ? "ui.props.source_port" : "ui.props.target_port"), port,
           source ? QStringLiteral("sourcePort") : QStringLiteral("targetPort"));
  }
  reload();
}

}  // namespace modelyne::shell
