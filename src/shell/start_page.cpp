#include "shell/start_page.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileInfo>
#include <QGridLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

#include "shell/i18n/strings.h"

namespace modelyne::shell {

StartPage::StartPage(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("startPage"));
  auto* outer = new QHBoxLayout(this);
  auto* left = new QVBoxLayout;
  auto* right = new QVBoxLayout;
  outer->addStretch(1);
  outer->addLayout(left, 3);
  outer->addSpacing(32);
  outer->addLayout(right, 3);
  outer->addStretch(1);

  title_ = new QLabel(this);
  QFont big = title_->font();
  big.setPointSizeF(big.pointSizeF() * 1.8);
  big.setBold(true);
  title_->setFont(big);
  left->addSpacing(24);
  left->addWidget(title_);
  newLabel_ = new QLabel(this);
  left->addWidget(newLabel_);
  auto* grid = new QGridLayout;
  int i = 0;
  for (core::DiagramKind kind : core::allDiagramKinds()) {
    auto* b = new QPushButton(this);
    b->setObjectName(QStringLiteral("new.") + QString::fromUtf8(core::diagramKindKey(kind).data()));
    connect(b, &QPushButton::clicked, this, [this, kind] { emit newProjectRequested(kind); });
    grid->addWidget(b, i / 2, i % 2);
    kindButtons_.append(b);
    ++i;
  }
  left->addLayout(grid);
  open_ = new QPushButton(this);
  open_->setObjectName(QStringLiteral("startOpen"));
  connect(open_, &QPushButton::clicked, this, &StartPage::openRequested);
  dismiss_ = new QPushButton(this);
  dismiss_->setObjectName(QStringLiteral("startDismiss"));
  connect(dismiss_, &QPushButton::clicked, this, &StartPage::dismissRequested);
  auto* row = new QHBoxLayout;
  row->addWidget(open_);
  row->addWidget(dismiss_);
  left->addLayout(row);
  left->addStretch(1);

  recentLabel_ = new QLabel(this);
  recent_ = new QListWidget(this);
  recent_->setObjectName(QStringLiteral("startRecent"));
  samplesLabel_ = new QLabel(this);
  samples_ = new QListWidget(this);
  samples_->setObjectName(QStringLiteral("startSamples"));
  right->addSpacing(24);
  right->addWidget(recentLabel_);
  right->addWidget(recent_, 1);
  right->addWidget(samplesLabel_);
  right->addWidget(samples_, 1);
  for (const QString& f : sampleFiles()) {
    auto* item = new QListWidgetItem(QFileInfo(f).completeBaseName(), samples_);
    item->setData(Qt::UserRole, f);
    item->setToolTip(QDir::toNativeSeparators(f));
  }
  auto open = [this](QListWidgetItem* item) { emit fileRequested(item->data(Qt::UserRole).toString()); };
  connect(recent_, &QListWidget::itemActivated, this, open);
  connect(samples_, &QListWidget::itemActivated, this, open);
  retranslate();
}

QStringList StartPage::sampleFiles() {
  QStringList dirs{QCoreApplication::applicationDirPath() + QStringLiteral("/samples"),
                   QCoreApplication::applicationDirPath() + QStringLiteral("/../share/modelyne/samples")};
#ifdef MODELYNE_SAMPLES_DIR
  dirs << QStringLiteral(MODELYNE_SAMPLES_DIR);
#endif
  for (const QString& d : dirs) {
    QDir dir(d);
    const QStringList names = dir.entryList({QStringLiteral("*.xml")}, QDir::Files, QDir::Name);
    if (names.isEmpty()) continue;
    QStringList out;
    for (const QString& n : names) out << dir.absoluteFilePath(n);
    return out;
  }
  return {};
}

void StartPage::setRecentFiles(const QStringList& files) {
  recent_->clear();
  for (const QString& f : files) {
    auto* item = new QListWidgetItem(QFileInfo(f).fileName(), recent_);
    item->setData(Qt::UserRole, f);
    item->setToolTip(QDir::toNativeSeparators(f));
  }
}

void StartPage::retranslate() {
  title_->setText(ui("ui.start.title"));
  newLabel_->setText(ui("ui.start.new"));
  recentLabel_->setText(ui("ui.start.recent"));
  samplesLabel_->setText(ui("ui.start.samples"));
  open_->setText(ui("ui.start.open"));
  dismiss_->setText(ui("ui.start.dismiss"));
  int i = 0;
  for (core::DiagramKind kind : core::allDiagramKinds()) kindButtons_[i++]->setText(ui(core::diagramKindMessageKey(kind)));
}

}  // namespace modelyne::shell
