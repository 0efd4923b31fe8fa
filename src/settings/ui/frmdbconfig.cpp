#include "settings/ui/frmdbconfig.h"

#include <QAccessible>
#include <QComboBox>
#include <QCoreApplication>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPushButton>
#include <QScrollArea>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QTextEdit>
#include <QVBoxLayout>
#include <algorithm>

#include "settings/connectionedit.h"
#include "settings/connectionhelp.h"
#include "settings/ui/connectionpage.h"
#include "ui/helptopic.h"
#include "ui/icons.h"
#include "ui/placement.h"

namespace hollowmere {

namespace {

const QString placementGroup = QStringLiteral("dbConfig");

}  // namespace

TfrmDBConfig::TfrmDBConfig(TWindowContext& context, QWidget* parent)
    : QDialog(parent),
      context_(context),
      tester_(context.stores),
      pages_(new QTabWidget(this)),
      splitter_(new QSplitter(this)) {
  setObjectName(QStringLiteral("frmDBConfig"));
  setWindowTitle(tr("Database Connection"));
  keptRow_ = makeKeptRow();
  setHelpTopic(*this, "connections");
  makePages();
  splitter_->setObjectName(QStringLiteral("splitter"));
  splitter_->setChildrenCollapsible(false);
  splitter_->addWidget(pages_);
  splitter_->addWidget(makeHelp());
  splitter_->setStretchFactor(0, 3);
  splitter_->setStretchFactor(1, 2);
  QWidget* testRow = makeTestRow();
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOK"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
  auto* layout = new QVBoxLayout(this);
  layout->addWidget(keptRow_);
  layout->addWidget(splitter_, 1);
  layout->addWidget(testRow);
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &TfrmDBConfig::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TfrmDBConfig::reject);
  connect(pages_, &QTabWidget::currentChanged, this, &TfrmDBConfig::onPage);
  connect(&tester_, &TConnectionTester::ended, this, &TfrmDBConfig::onTested);
  onPage();
  resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 36);
  restorePlacement(context_.store, placementGroup, *this);
  restoreState(context_.store, placementGroup, *splitter_);
}

void TfrmDBConfig::makePages() {
  pages_->setObjectName(QStringLiteral("pcTypes"));
  pages_->tabBar()->setObjectName(QStringLiteral("tabTypes"));
  pages_->tabBar()->setAccessibleName(tr("Database type"));
  for (const TConnectionType& type : connectionTypes()) {
    auto* page = new TConnectionPage(type);
    auto* area = new QScrollArea(pages_);
    area->setWidget(page);
    area->setWidgetResizable(true);
    area->setFrameShape(QFrame::NoFrame);
    area->setFocusPolicy(Qt::NoFocus);
    pages_->addTab(area, text(std::string(type.dbType)));
    all_.push_back(page);
    connect(page, &TConnectionPage::edited, this, [this] {
      if (!tester_.isRunning()) showResult({});
    });
  }
}

QWidget* TfrmDBConfig::makeKeptRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  keptBox_ = new QComboBox(row);
  keptBox_->setObjectName(QStringLiteral("cbKept"));
  auto* label = new QLabel(tr("&Kept connections:"), row);
  label->setBuddy(keptBox_);
  layout->addWidget(label);
  layout->addWidget(keptBox_, 1);
  row->hide();
  connect(keptBox_, &QComboBox::activated, this, &TfrmDBConfig::takeKept);
  return row;
}

void TfrmDBConfig::offerKept(const std::vector<ConnectionConfig>& records) {
  kept_.clear();
  keptBox_->clear();
  keptBox_->addItem(tr("A new connection"));
  for (const ConnectionConfig& record : records) {
    const TValue* type = record.find("dbtype");
    const auto page = std::ranges::find_if(
        all_, [&](const TConnectionPage* each) { return type && *type == TValue(each->type().dbType); });
    if (page == all_.end() || !pages_->isTabVisible(static_cast<int>(page - all_.begin()))) continue;
    const auto row = shownRow(record);
    const std::string port = row[1].empty() ? "" : " :" + row[1];
    keptBox_->addItem(QString::fromStdString(row[2] + "  " + row[0] + port));
    kept_.push_back(record);
  }
  keptRow_->setVisible(!kept_.empty());
}

void TfrmDBConfig::takeKept(int place) {
  if (place == 0) return;
  setConnection(kept_[static_cast<std::size_t>(place - 1)]);
  // Who walks through the choices stays there.
  keptBox_->setFocus();
}

QWidget* TfrmDBConfig::makeHelp() {
  help_ = new QTextEdit(splitter_);
  help_->setObjectName(QStringLiteral("memHelp"));
  help_->setAccessibleName(tr("Help"));
  help_->setReadOnly(true);
  help_->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  help_->setTabChangesFocus(true);
  return help_;
}

QWidget* TfrmDBConfig::makeTestRow() {
  auto* row = new QWidget(this);
  auto* layout = new QHBoxLayout(row);
  layout->setContentsMargins(0, 0, 0, 0);
  bTest_ = new QPushButton(themeIcon("network-server"), tr("&Test Connection"), row);
  bTest_->setObjectName(QStringLiteral("bTestConnection"));
  bTest_->setAutoDefault(false);
  // Its other caption is shorter; it keeps its place.
  bTest_->setMinimumWidth(bTest_->sizeHint().width());
  result_ = new QLabel(row);
  result_->setObjectName(QStringLiteral("lTestResult"));
  result_->setWordWrap(true);
  result_->setTextFormat(Qt::PlainText);
  result_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // Room for a message of two lines, so that the dialog does not jump when one comes.
  result_->setMinimumHeight(result_->fontMetrics().lineSpacing() * 2);
  layout->addWidget(bTest_);
  layout->addWidget(result_, 1);
  connect(bTest_, &QPushButton::clicked, this, &TfrmDBConfig::bTestConnectionClick);
  return row;
}

void TfrmDBConfig::loadAllowedDataSourceTypes(const std::vector<std::string_view>& dbTypes) {
  for (std::size_t i = 0; i < all_.size(); ++i)
    pages_->setTabVisible(static_cast<int>(i),
                          std::ranges::find(dbTypes, all_[i]->type().dbType) != dbTypes.end());
  // With one type there is no tab to choose first.
  if (dbTypes.size() == 1) page()->focusFirst();
}

bool TfrmDBConfig::setConnection(const ConnectionConfig& record) {
  const TValue* type = record.find("dbtype");
  for (std::size_t i = 0; i < all_.size(); ++i) {
    if (type == nullptr || *type != TValue(all_[i]->type().dbType)) continue;
    all_[i]->setValues(connectionValues(all_[i]->type(), record));
    pages_->setCurrentIndex(static_cast<int>(i));
    all_[i]->focusFirst();
    return true;
  }
  return false;
}

TConnectionPage* TfrmDBConfig::page() const {
  return all_.at(static_cast<std::size_t>(pages_->currentIndex()));
}

std::optional<ConnectionConfig> TfrmDBConfig::readPage() {
  const TConnectionType& type = page()->type();
  const TFieldValues values = page()->values();
  const auto fault = findFieldFault(type, values);
  if (!fault) return buildConnection(type, values);
  context_.prompt.warning(fault->message);
  page()->focusField(fault->member);
  return std::nullopt;
}

void TfrmDBConfig::onPage() {
  tester_.cancel();
  showResult({});
  help_->setPlainText(
      text(connectionHelp(page()->type(), QCoreApplication::applicationDirPath().toStdString())));
}

void TfrmDBConfig::bTestConnectionClick() {
  if (tester_.isRunning()) return tester_.cancel();
  const auto record = readPage();
  if (!record) return;
  bTest_->setText(tr("&Stop Test"));
  showResult(text(checktexts::running(page()->type().dbType)));
  tester_.start(*record);
}

void TfrmDBConfig::onTested(bool reached, const QString& message) {
  bTest_->setText(tr("&Test Connection"));
  // Not by colour alone: the text says it, too.
  QPalette colours = palette();
  if (!reached)
    colours.setColor(QPalette::WindowText,
                     colours.color(QPalette::Window).lightness() < 128 ? QColor(0xff8a80) : QColor(0xb00020));
  showResult(message);
  result_->setPalette(colours);
}

void TfrmDBConfig::showResult(const QString& message) {
  if (result_->text() == message) return;
  result_->setPalette(palette());
  result_->setText(message);
  result_->setAccessibleName(message);
  // Nobody's focus is on the label; a screen reader is told of it.
  QAccessibleEvent told(result_, QAccessible::Alert);
  QAccessible::updateAccessibility(&told);
}

void TfrmDBConfig::accept() {
  auto record = readPage();
  if (!record) return;
  connection_ = std::move(record);
  QDialog::accept();
}

void TfrmDBConfig::done(int result) {
  tester_.cancel();
  savePlacement(context_.store, placementGroup, *this);
  saveState(context_.store, placementGroup, *splitter_);
  QDialog::done(result);
}

}  // namespace hollowmere
