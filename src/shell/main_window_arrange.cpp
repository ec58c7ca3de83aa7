// Arrange commands on the canvas selection: align, distribute, flip,
// group, ungroup and z-order, each one undo step.
#include <algorithm>

#include "bridge/bridge.h"
#include "shell/canvas_view.h"
#include "shell/i18n/strings.h"
#include "shell/main_window.h"

namespace modelyne::shell {

void MainWindow::align(int axis) {
  if (!session_) return;
  const int n = bridge::alignNodes(session_->document(), canvas_->selectedNodeIds(), axis);
  if (n > 0) onDocumentEdited();
}

void MainWindow::distribute(int axis) {
  if (!session_) return;
  const int n = bridge::distributeNodes(session_->document(), canvas_->selectedNodeIds(), axis);
  if (n > 0) onDocumentEdited();
}

void MainWindow::flip(int axis) {
  if (!session_) return;
  const int n = bridge::flipNodes(session_->document(), canvas_->selectedNodeIds(), axis);
  if (n > 0) onDocumentEdited();
}

void MainWindow::group() {
  if (!session_) return;
  const std::string id = bridge::groupNodes(session_->document(), canvas_->selectedNodeIds());
  if (id.empty()) {
    logMessage(ui("ui.msg.group_needs_two"));
    return;
  }
  logMessage(ui("ui.log.grouped").arg(canvas_->selectedNodes().size()));
  onDocumentEdited();
}

void MainWindow::ungroup() {
  if (!session_) return;
  if (bridge::ungroupNodes(session_->document(), canvas_->selectedNodeIds()) > 0) onDocumentEdited();
}

void MainWindow::reorder(int which) {
  if (!session_) return;
  const auto ids = canvas_->selectedNodeIds();
  if (ids.empty()) return;
  static constexpr bridge::ZOrder kOrders[] = {bridge::ZOrder::toFront, bridge::ZOrder::toBack,
                                                bridge::ZOrder::forward, bridge::ZOrder::backward};
  // One gesture, one undo step, whatever the size of the selection.
  if (bridge::reorderNodes(session_->document(), ids, kOrders[std::clamp(which, 0, 3)]) > 0) onDocumentEdited();
}

}  // namespace modelyne::shell
