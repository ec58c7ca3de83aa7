#include "shell/palette_panel.h"

#include <QComboBox>
#include <QDrag>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMimeData>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "check/allowed_types.h"
#include "shell/i18n/strings.h"

namespace modelyne::shell {
namespace {

constexpr int kTypeRole = Qt::UserRole + 1;

QString shapeName(core::ShapeType t) {
  return ui("ui.shape.type." + std::to_string(static_cast<int>(t)));
}

QString edgeName(core::EdgeType t) { return ui("ui.edge.type." + std::to_string(static_cast<int>(t))); }

QString groupName(core::PaletteGroup g) {
  return ui("ui.palette.group." + std::to_string(static_cast<int>(g)));
}

/// A tree that starts a drag carrying the shape type.
class ShapeTree : public QTreeWidget {
 public:
  using QTreeWidget::QTreeWidget;

 protected:
  void startDrag(Qt::DropActions) override {
    QTreeWidgetItem* item = currentItem();
    if (!item || !item->data(0, kTypeRole).isValid()) return;
    auto* mime = new QMimeData;
    mime->setData(QLatin1String(kShapeMime), QByteArray::number(item->data(0, kTypeRole).toInt()));
    auto* drag = new QDrag(this);
    drag->setMimeData(mime);
    drag->exec(Qt::CopyAction);
  }
};

}  // namespace

PalettePanel::PalettePanel(QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 4);
  search_ = new QLineEdit(this);
  search_->setObjectName(QStringLiteral("paletteSearch"));
  search_->setClearButtonEnabled(true);
  edges_ = new QComboBox(this);
  edges_->setObjectName(QStringLiteral("edgeTypeCombo"));
  tree_ = new ShapeTree(this);
  tree_->setObjectName(QStringLiteral("paletteTree"));
  tree_->setHeaderHidden(true);
  tree_->setDragEnabled(true);
  tree_->setDragDropMode(QAbstractItemView::DragOnly);
  tree_->setRootIsDecorated(true);
  tree_->setIndentation(12);
  layout->addWidget(search_);
  layout->addWidget(edges_);
  layout->addWidget(tree_, 1);

  connect(search_, &QLineEdit::textChanged, this, &PalettePanel::filter);
  connect(tree_, &QTreeWidget::itemClicked, this, [this](QTreeWidgetItem* item) {
    if (item->data(0, kTypeRole).isValid()) emit shapeChosen(static_cast<core::ShapeType>(item->data(0, kTypeRole).toInt()));
  });
  connect(tree_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
    if (item->data(0, kTypeRole).isValid()) emit shapeActivated(static_cast<core::ShapeType>(item->data(0, kTypeRole).toInt()));
  });
  connect(edges_, &QComboBox::activated, this, [this](int) { emit edgeTypeChanged(edgeType()); });
  retranslate();
}

void PalettePanel::retranslate() {
  search_->setPlaceholderText(ui("ui.palette.search"));
  edges_->setToolTip(ui("ui.palette.edge_type"));
  rebuild();
}

void PalettePanel::setKind(core::DiagramKind kind) {
  kind_ = kind;
  rebuild();
}

core::EdgeType PalettePanel::edgeType() const {
  const QVariant v = edges_->currentData();
  return v.isValid() ? static_cast<core::EdgeType>(v.toInt()) : core::EdgeType::straightArrow;
}

void PalettePanel::setEdgeType(core::EdgeType type) {
  const int i = edges_->findData(static_cast<int>(type));
  if (i >= 0) edges_->setCurrentIndex(i);
}

QTreeWidgetItem* PalettePanel::itemFor(core::ShapeType type) const {
  for (QTreeWidgetItemIterator it(tree_); *it; ++it)
    if ((*it)->data(0, kTypeRole).isValid() && (*it)->data(0, kTypeRole).toInt() == static_cast<int>(type)) return *it;
  return nullptr;
}

void PalettePanel::rebuild() {
  // Edge types: the kind's own first, then the generic ones, then the rest.
  const core::EdgeType keep = edges_->count() ? edgeType() : core::EdgeType::straightArrow;
  edges_->clear();
  std::vector<bool> listed(core::edgeCatalogue().size(), false);
  auto addEdge = [&](core::EdgeType t) {
    const auto i = static_cast<std::size_t>(t);
    if (i >= listed.size() || listed[i]) return;
    listed[i] = true;
    edges_->addItem(edgeName(t), static_cast<int>(t));
  };
  for (core::EdgeType t : check::allowedSpecificEdges(kind_)) addEdge(t);
  for (const auto& info : core::edgeCatalogue())
    if (check::isEdgeAllowed(kind_, info.type)) addEdge(info.type);
  edges_->insertSeparator(edges_->count());
  for (const auto& info : core::edgeCatalogue()) addEdge(info.type);
  setEdgeType(check::isEdgeAllowed(kind_, keep) ? keep
              : check::allowedSpecificEdges(kind_).empty() ? core::EdgeType::straightArrow
                                                           : check::allowedSpecificEdges(kind_).front());

  // Shapes: groups in palette order, allowed types first.
  tree_->clear();
  std::vector<QTreeWidgetItem*> allowedGroups(core::kPaletteGroupCount, nullptr);
  std::vector<QTreeWidgetItem*> moreGroups(core::kPaletteGroupCount, nullptr);
  auto* more = new QTreeWidgetItem({ui("ui.palette.more")});
  more->setFlags(Qt::ItemIsEnabled);
  more->setData(0, Qt::UserRole, QStringLiteral("more"));
  for (int pass = 0; pass < 2; ++pass) {
    for (int g = 0; g < core::kPaletteGroupCount; ++g) {
      for (const auto& info : core::shapeCatalogue()) {
        if (static_cast<int>(info.group) != g) continue;
        const bool allowed = check::isShapeAllowed(kind_, info.type);
        if (allowed != (pass == 0)) continue;
        auto& groups = allowed ? allowedGroups : moreGroups;
        QTreeWidgetItem*& group = groups[static_cast<std::size_t>(g)];
        if (!group) {
          group = new QTreeWidgetItem({groupName(info.group)});
          group->setFlags(Qt::ItemIsEnabled);
          if (allowed) tree_->addTopLevelItem(group);
          else more->addChild(group);
        }
        auto* item = new QTreeWidgetItem(group, {shapeName(info.type)});
        item->setData(0, kTypeRole, static_cast<int>(info.type));
        item->setToolTip(0, QString::fromUtf8(info.key.data(), static_cast<int>(info.key.size())));
        item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsDragEnabled);
      }
    }
  }
  tree_->addTopLevelItem(more);
  for (int i = 0; i < tree_->topLevelItemCount() - 1; ++i) tree_->topLevelItem(i)->setExpanded(true);
  more->setExpanded(false);
  filter(search_->text());
}

void PalettePanel::filter(const QString& text) {
  const QString needle = text.trimmed();
  for (QTreeWidgetItemIterator it(tree_); *it; ++it) {
    QTreeWidgetItem* item = *it;
    if (!item->data(0, kTypeRole).isValid()) continue;
    item->setHidden(!needle.isEmpty() && !item->text(0).contains(needle, Qt::CaseInsensitive) &&
                    !item->toolTip(0).contains(needle, Qt::CaseInsensitive));
  }
  // Hide groups left empty; open everything while searching.
  std::function<bool(QTreeWidgetItem*)> visit = [&](QTreeWidgetItem* item) {
    if (item->data(0, kTypeRole).isValid()) return !item->isHidden();
    bool any = false;
    for (int i = 0; i < item->childCount(); ++i) any |= visit(item->child(i));
    item->setHidden(!any);
    if (!needle.isEmpty()) item->setExpanded(true);
    return any;
  };
  for (int i = 0; i < tree_->topLevelItemCount(); ++i) visit(tree_->topLevelItem(i));
}

}  // namespace modelyne::shell
