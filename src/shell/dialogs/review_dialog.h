#pragma once
/// ReviewDialog: the list of generated candidates with their decisions and
/// the buttons that decide: Accept, Modify, Discard, Accept all, Discard
/// all. Each decision is recorded through the review session at once.

#include <QDialog>

class QListWidget;

namespace modelyne::shell {

class ReviewSession;

class ReviewDialog : public QDialog {
  Q_OBJECT
 public:
  ReviewDialog(ReviewSession& review, QWidget* parent = nullptr);
  QListWidget* list() const noexcept { return list_; }
  /// Re-reads the entries (after undo, or a decision).
  void refresh();

 signals:
  /// A decision changed the document; `record` is its review record.
  void decided(const QString& record);
  /// The user wants to edit this candidate on the canvas.
  void revealRequested(const QString& id);

 private:
  void decideCurrent(const char* decision);
  void decideAll(const char* decision);

  ReviewSession& review_;
  QListWidget* list_ = nullptr;
};

}  // namespace modelyne::shell
