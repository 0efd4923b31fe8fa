#include "app/ui/frmhelp.h"

#include <QFile>
#include <QKeyEvent>
#include <QLineEdit>
#include <QPushButton>
#include <QShortcut>
#include <QTextBrowser>
#include <QVBoxLayout>

#include "ui/icons.h"

/// The pages are part of a static library: nothing else would bring them in. No namespace may stand around
/// it.
static void takeHelpPages() { Q_INIT_RESOURCE(help); }

namespace hollowmere {

namespace {

QString pageOf(const QString& topic) { return QStringLiteral(":/help/%1.md").arg(topic); }

}  // namespace

TfrmHelp::TfrmHelp(QWidget* parent) : QWidget(parent, Qt::Window), pages_(new QTextBrowser(this)) {
  takeHelpPages();
  setObjectName(QStringLiteral("frmHelp"));
  setWindowTitle(tr("Hollowmere Help"));
  setWindowIcon(themeIcon("help-contents"));
  pages_->setObjectName(QStringLiteral("mHelp"));
  pages_->setAccessibleName(tr("Help page"));
  // The program has no window for other addresses, and needs none.
  pages_->setOpenExternalLinks(false);
  pages_->document()->setDocumentMargin(fontMetrics().height());
  auto* layout = new QVBoxLayout(this);
  auto* bar = new QHBoxLayout;
  makeBar(bar);
  layout->addLayout(bar);
  layout->addWidget(pages_, 1);
  setFocusProxy(pages_);
  resize(fontMetrics().averageCharWidth() * 110, fontMetrics().height() * 36);
}

void TfrmHelp::makeBar(QBoxLayout* layout) {
  const auto button = [&](const char* name, const QString& caption, const char* icon) {
    auto* made = new QPushButton(themeIcon(icon), caption, this);
    made->setObjectName(QLatin1String(name));
    layout->addWidget(made);
    return made;
  };
  connect(button("bContents", tr("&Contents"), "view-list-text"), &QPushButton::clicked, this,
          [this] { showTopic(QStringLiteral("index")); });
  QPushButton* back = button("bBack", tr("&Back"), "go-previous");
  QPushButton* forward = button("bForward", tr("&Forward"), "go-next");
  for (QPushButton* one : {back, forward}) one->setEnabled(false);
  connect(back, &QPushButton::clicked, pages_, &QTextBrowser::backward);
  connect(forward, &QPushButton::clicked, pages_, &QTextBrowser::forward);
  connect(pages_, &QTextBrowser::backwardAvailable, back, &QPushButton::setEnabled);
  connect(pages_, &QTextBrowser::forwardAvailable, forward, &QPushButton::setEnabled);
  layout->addStretch();
  find_ = new QLineEdit(this);
  find_->setObjectName(QStringLiteral("eFindHelp"));
  find_->setPlaceholderText(tr("Find on this page"));
  find_->setAccessibleName(tr("Find on this page"));
  find_->setClearButtonEnabled(true);
  layout->addWidget(find_);
  connect(find_, &QLineEdit::returnPressed, this, &TfrmHelp::find);
  auto* keys = new QShortcut(QKeySequence::Find, this, find_, qOverload<>(&QWidget::setFocus));
  keys->setContext(Qt::WidgetWithChildrenShortcut);
}

void TfrmHelp::showTopic(const QString& topic) {
  const QString page = pageOf(topic);
  const QString shown = QFile::exists(page) ? page : pageOf(QStringLiteral("index"));
  pages_->setSource(QUrl(QStringLiteral("qrc") + shown), QTextDocument::MarkdownResource);
}

/// From the cursor on, and from the beginning when there is nothing more.
void TfrmHelp::find() {
  if (pages_->find(find_->text())) return;
  pages_->moveCursor(QTextCursor::Start);
  pages_->find(find_->text());
}

void TfrmHelp::keyPressEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Escape)
    close();
  else
    QWidget::keyPressEvent(event);
}

}  // namespace hollowmere
