#include "shell/property_panel.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFocusEvent>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTimer>
#include <QVBoxLayout>

#include "io/property_schema.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

constexpr const char* kColourNames[] = {"blue", "red", "green", "yellow", "orange", "purple"};
constexpr const char* kAnchorKeys[] = {"top", "bottom", "left", "right", "topLeft", "topRight", "bottomLeft", "bottomRight"};

QString q(const std::string& s) { return QString::fromStdString(s); }

/// A multi-line field that reports its text when it loses the focus.
class CommitTextEdit : public QPlainTextEdit {
 public:
  std::function<void(const QString&)> onCommit;
  using QPlainTextEdit::QPlainTextEdit;

 protected:
  void focusOutEvent(QFocusEvent* e) override {
    QPlainTextEdit::focusOutEvent(e);
    if (onCommit && document()->isModified()) {
      document()->setModified(false);
      onCommit(toPlainText());
    }
  }
};

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
    rebuild();
  });
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

  auto* text = new CommitTextEdit(body_);
  text->setObjectName(QStringLiteral("prop_text"));
  text->setPlainText(q(node.text));
  text->setTabChangesFocus(true);
  text->setFixedHeight(54);
  text->document()->setModified(false);
  text->onCommit = [this, id](const QString& v) {
    apply(QStringLiteral("text"), [&] { bridge::setNodeText(doc_, id, v.toStdString()); }) && (emit edited(), true);
  };
  addRow(ui("ui.props.text"), text, QStringLiteral("text"));

  auto* colour = new QComboBox(body_);
  colour->setObjectName(QStringLiteral("prop_fillColor"));
  colour->addItem(ui("ui.color.none"), QString());
  for (const char* c : kColourNames) colour->addItem(ui(std::string("ui.color.") + c), QLatin1String(c));
  const int ci = colour->findData(q(node.fillColor));
  if (ci >= 0) {
    colour->setCurrentIndex(ci);
  } else {
    colour->addItem(q(node.fillColor), q(node.fillColor));  // a value from a file, kept as is
    colour->setCurrentIndex(colour->count() - 1);
  }
  connect(colour, &QComboBox::activated, this, [this, id, colour](int) {
    const std::string v = colour->currentData().toString().toStdString();
    apply(QStringLiteral("fillColor"), [&] { bridge::setNodeColor(doc_, id, v); }) && (emit edited(), true);
  });
  addRow(ui("ui.props.fill"), colour, QStringLiteral("fillColor"));

  auto* di = new QCheckBox(body_);
  di->setObjectName(QStringLiteral("prop_dataIntegration"));
  di->setChecked(node.dataIntegration);
  connect(di, &QCheckBox::toggled, this, [this, id](bool on) {
    apply(QStringLiteral("dataIntegration"), [&] { bridge::setNodeDataIntegration(doc_, id, on); }) &&
        (emit edited(), true);
  });
  addRow(ui("ui.props.data_integration"), di, QStringLiteral("dataIntegration"));

  const io::Schema& schema = io::schemaFor(node.type);
  auto valueOf = [&](const std::string& key) {
    auto it = node.properties.find(key);
    return it == node.properties.end() ? std::string() : it->second;
  };
  for (const io::PropertyDef& def : schema) {
    const QString key = q(def.key);
    const std::string k = def.key;
    auto store = [this, id, k, key](const QString& v) {
      apply(key, [&] { bridge::setNodeProperty(doc_, id, k, v.toStdString()); }) && (emit edited(), true);
    };
    QWidget* field = nullptr;
    switch (def.kind) {
      case io::ValueKind::multiLineText: {
        auto* e = new CommitTextEdit(body_);
        e->setPlainText(q(valueOf(k)));
        e->setPlaceholderText(q(def.hint));
        e->setTabChangesFocus(true);
        e->setFixedHeight(64);
        e->document()->setModified(false);
        e->onCommit = store;
        field = e;
        break;
      }
      case io::ValueKind::boolean: {
        auto* c = new QCheckBox(body_);
        c->setChecked(valueOf(k) == "true");
        connect(c, &QCheckBox::toggled, this, [store](bool on) { store(on ? QStringLiteral("true") : QStringLiteral("false")); });
        field = c;
        break;
      }
      case io::ValueKind::choice: {
        auto* c = new QComboBox(body_);
        c->addItem(QString());
        for (const std::string& choice : def.choices) c->addItem(q(choice));
        const QString cur = q(valueOf(k));
        int i = c->findText(cur);
        if (i < 0) {
          c->addItem(cur);
          i = c->count() - 1;
        }
        c->setCurrentIndex(i);
        connect(c, &QComboBox::activated, this, [store, c](int) { store(c->currentText()); });
        field = c;
        break;
      }
      default: {
        auto* e = new QLineEdit(q(valueOf(k)), body_);
        e->setPlaceholderText(q(def.hint));
        if (needsValidation(def.kind)) {
          // Say what is wrong while typing; storing is refused by the bridge.
          connect(e, &QLineEdit::textEdited, this, [this, def, key](const QString& v) {
            std::string why;
            setError(key, io::validateValue(def, v.toStdString(), why) ? QString() : q(why));
          });
        }
        connect(e, &QLineEdit::editingFinished, this, [e, store, k, this, id] {
          const core::Node* n = doc_ ? doc_->findNode(id) : nullptr;
          if (!n) return;
          auto it = n->properties.find(k);
          const std::string cur = it == n->properties.end() ? std::string() : it->second;
          if (e->text().toStdString() != cur || it == n->properties.end()) {
            if (e->text().isEmpty() && it == n->properties.end()) return;
            store(e->text());
          }
        });
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
    auto* e = new QLineEdit(q(v), body_);
    e->setReadOnly(true);
    e->setObjectName(QStringLiteral("prop_") + q(k));
    e->setToolTip(ui("ui.props.unknown_hint"));
    addRow(q(k), e);
  }
}

void PropertyPanel::buildEdge(const core::Edge& edge) {
  const std::string id = edge.id;
  title_->setText(ui("ui.props.edge_title").arg(q(id), q(edge.source), q(edge.target)));

  auto* type = new QComboBox(body_);
  type->setObjectName(QStringLiteral("prop_edgeType"));
  for (const auto& info : core::edgeCatalogue())
    type->addItem(ui("ui.edge.type." + std::to_string(static_cast<int>(info.type))), static_cast<int>(info.type));
  type->setCurrentIndex(type->findData(static_cast<int>(edge.type)));
  connect(type, &QComboBox::activated, this, [this, id, type](int) {
    const auto t = static_cast<core::EdgeType>(type->currentData().toInt());
    apply(QStringLiteral("edgeType"), [&] { bridge::setEdgeType(doc_, id, t); }) && (emit directEdit(), true);
  });
  addRow(ui("ui.props.edge_type"), type, QStringLiteral("edgeType"));

  auto* label = new QLineEdit(q(edge.text), body_);
  label->setObjectName(QStringLiteral("prop_label"));
  connect(label, &QLineEdit::editingFinished, this, [this, id, label] {
    const core::Edge* e = doc_ ? doc_->findEdge(id) : nullptr;
    if (!e || e->text == label->text().toStdString()) return;
    apply(QStringLiteral("label"), [&] { bridge::setEdgeText(doc_, id, label->text().toStdString()); }) &&
        (emit directEdit(), true);
  });
  addRow(ui("ui.props.label"), label, QStringLiteral("label"));

  for (int end = 0; end < 2; ++end) {
    const bool source = end == 0;
    auto* port = new QComboBox(body_);
    port->setObjectName(source ? QStringLiteral("prop_sourcePort") : QStringLiteral("prop_targetPort"));
    for (int a = 0; a < 8; ++a) port->addItem(ui(std::string("ui.port.") + kAnchorKeys[a]), a);
    port->setCurrentIndex(static_cast<int>(source ? edge.sourcePort : edge.targetPort));
    connect(port, &QComboBox::activated, this, [this, id, source, port](int) {
      const core::Edge* e = doc_ ? doc_->findEdge(id) : nullptr;
      if (!e) return;
      const std::string node = source ? e->source : e->target;
      const auto a = static_cast<core::Anchor>(port->currentData().toInt());
      apply(source ? QStringLiteral("sourcePort") : QStringLiteral("targetPort"),
            [&] { bridge::reconnectEdge(doc_, id, source, node, a); }) &&
          (emit directEdit(), true);
    });
    addRow(ui(source ? "ui.props.source_port" : "ui.props.target_port"), port,
           source ? QStringLiteral("sourcePort") : QStringLiteral("targetPort"));
  }
}

}  // namespace modelyne::shell
