// Arrange commands on the canvas selection: align, distribute, flip,
// group, ungroup and z-order, each one undo step.
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
  auto ids = canvas_->selectedNodeIds();  // drawing order
  if (ids.empty()) return;
  const bridge::DocumentHandle doc = session_->document();
  // Keep the selection's own stacking: to the front bottom-most first, to
  // the back top-most first; one step up top-most first, down bottom-most first.
  if (which == 1 || which == 2) std::reverse(ids.begin(), ids.end());
  for (const std::string& id : ids) {
    switch (which) {
      case 0: bridge::bringToFront(doc, id); break;
      case 1: bridge::sendToBack(doc, id); break;
      case 2: bridge::bringForward(doc, id); break;
      default: bridge::sendBackward(doc, id); break;
    }
  }
  onDocumentEdited();
}

}  // namespace modelyne::shell
