#include "shell/model_tree.h"

#include <QMenu>
#include <QTimer>
#include <QTreeWidget>
#include <QVBoxLayout>
#include <map>

#include "shell/command_table.h"
#include "shell/i18n/strings.h"
#include "shell/project_session.h"

namespace modelyne::shell {
namespace {

constexpr int kModelRole = Qt::UserRole + 1;  // model index
constexpr int kNodeRole = Qt::UserRole + 2;   // node id

}  // namespace

ModelTree::ModelTree(QWidget* parent) : QWidget(parent) {
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  tree_ = new QTreeWidget(this);
  tree_->setObjectName(QStringLiteral("modelTree"));
  tree_->setHeaderHidden(true);
  tree_->setContextMenuPolicy(Qt::CustomContextMenu);
  tree_->setUniformRowHeights(true);
  layout->addWidget(tree_);
  connect(tree_, &QTreeWidget::customContextMenuRequested, this, &ModelTree::contextMenu);
  connect(tree_, &QTreeWidget::itemActivated, this, [this](QTreeWidgetItem* item) {
    if (item->data(0, kModelRole).isValid() && !item->data(0, kNodeRole).isValid())
      emit modelActivated(item->data(0, kModelRole).toInt());
  });
  connect(tree_, &QTreeWidget::currentItemChanged, this, [this](QTreeWidgetItem* item) {
    if (!syncing_ && item && item->data(0, kNodeRole).isValid()) emit nodeSelected(item->data(0, kNodeRole).toString());
  });
}

void ModelTree::setSession(const ProjectSession* session) {
  session_ = session;
  rebuild();
}

void ModelTree::scheduleRefresh() {
  if (dirty_) return;
  dirty_ = true;
  // Many edits in a row (a drag, typing) cost one rebuild.
  QTimer::singleShot(150, this, [this] {
    if (dirty_) rebuild();
  });
}

void ModelTree::rebuild() {
  dirty_ = false;
  syncing_ = true;
  tree_->clear();
  if (session_) {
    for (int m = 0; m < session_->modelCount(); ++m) {
      const auto& model = session_->model(m);
      auto* item = new QTreeWidgetItem(tree_, {QString::fromStdString(model.name)});
      item->setData(0, kModelRole, m);
      item->setToolTip(0, ui(core::diagramKindMessageKey(session_->document(m)->frame().kind)));
      if (m != session_->activeIndex()) continue;
      QFont f = item->font(0);
      f.setBold(true);
      item->setFont(0, f);
      // Nodes by shape type, types in catalogue order.
      std::map<int, std::vector<const core::Node*>> byType;
      for (const core::Node& n : session_->document()->nodes()) byType[static_cast<int>(n.type)].push_back(&n);
      for (const auto& [type, nodes] : byType) {
        auto* group = new QTreeWidgetItem(item, {ui("ui.shape.type." + std::to_string(type)) +
                                                 QStringLiteral(" (%1)").arg(nodes.size())});
        group->setData(0, kModelRole, m);
        for (const core::Node* n : nodes) {
          const QString label = n->text.empty() ? QString::fromStdString(n->id)
                                                : QString::fromStdString(n->text).replace(QLatin1Char('\n'), QLatin1Char(' '));
          auto* leaf = new QTreeWidgetItem(group, {label});
          leaf->setData(0, kModelRole, m);
          leaf->setData(0, kNodeRole, QString::fromStdString(n->id));
          leaf->setToolTip(0, QString::fromStdString(n->id));
        }
      }
      item->setExpanded(true);
    }
  }
  syncing_ = false;
}

void ModelTree::showSelection(const QString& nodeId) {
  syncing_ = true;
  for (QTreeWidgetItemIterator it(tree_); *it; ++it) {
    if ((*it)->data(0, kNodeRole).toString() == nodeId && !nodeId.isEmpty()) {
      tree_->setCurrentItem(*it);
      break;
    }
  }
  syncing_ = false;
}

void ModelTree::contextMenu(const QPoint& pos) {
  QTreeWidgetItem* item = tree_->itemAt(pos);
  const QPoint global = tree_->viewport()->mapToGlobal(pos);
  if (item && item->data(0, kNodeRole).isValid()) {
    emit elementMenuRequested(item->data(0, kNodeRole).toString(), global);
    return;
  }
  if (item && item->parent()) return;  // a group of one shape type: nothing acts on it
  const int model = item && item->data(0, kModelRole).isValid() ? item->data(0, kModelRole).toInt() : -1;
  auto* menu = new QMenu(this);
  menu->setAttribute(Qt::WA_DeleteOnClose);
  menu->addAction(withoutMnemonic(ui("ui.menu.model.add")), this, [this] { emit addModelRequested(); });
  if (model >= 0) {
    menu->addAction(withoutMnemonic(ui("ui.menu.model.open")), this, [this, model] { emit modelActivated(model); });
    menu->addAction(withoutMnemonic(ui("ui.menu.model.rename")), this, [this, model] { emit renameModelRequested(model); });
    menu->addAction(withoutMnemonic(ui("ui.menu.model.delete")), this, [this, model] { emit deleteModelRequested(model); });
  }
  menu->popup(global);
}

}  // namespace modelyne::shell
