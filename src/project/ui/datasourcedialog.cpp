#include "project/ui/datasourcedialog.h"

#include <QDialogButtonBox>
#include <QFontDatabase>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>
#include <algorithm>

#include "json/json.h"
#include "project/querymembers.h"
#include "project/runcheck.h"
#include "project/runtexts.h"
#include "ui/placement.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

constexpr int testRows = 10;

QString memberText(const TValue& definition, std::string_view name) {
  if (!definition.is(TKind::Object)) return {};
  const TValue* value = definition.asObject().find(name);
  return value && value->is(TKind::Text) ? QString::fromStdString(value->asText()) : QString();
}

}  // namespace

TDataSourceDialog::TDataSourceDialog(TWindowContext& context, const TProject& project,
                                     const TDataSource& source, QWidget* parent)
    : QDialog(parent), context_(context), project_(project), name_(source.name) {
  setObjectName(QStringLiteral("dataSourceDialog"));
  setWindowTitle(tr("Data Source %1").arg(QString::fromStdString(source.name)));
  auto* layout = new QVBoxLayout(this);
  makeFields(source);
  fault_ = new QLabel(this);
  fault_->setObjectName(QStringLiteral("lQueryFault"));
  fault_->setWordWrap(true);
  fault_->setTextFormat(Qt::PlainText);
  layout->addWidget(fault_);
  auto* test = new QPushButton(tr("&Test"), this);
  test->setObjectName(QStringLiteral("bTest"));
  test->setAutoDefault(false);
  layout->addWidget(test, 0, Qt::AlignLeft);
  rows_ = new QPlainTextEdit(this);
  rows_->setObjectName(QStringLiteral("mRows"));
  rows_->setAccessibleName(tr("First rows"));
  rows_->setReadOnly(true);
  rows_->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  rows_->setPlaceholderText(tr("Test shows the first rows here."));
  layout->addWidget(rows_, 1);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
  buttons->button(QDialogButtonBox::Ok)->setObjectName(QStringLiteral("bOk"));
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
  layout->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
  connect(test, &QPushButton::clicked, this, &TDataSourceDialog::bTestClick);
  for (const auto& [key, edit] : texts_)
    connect(edit, &QPlainTextEdit::textChanged, this, &TDataSourceDialog::showFault);
  for (const auto& [key, edit] : lines_)
    connect(edit, &QLineEdit::textChanged, this, &TDataSourceDialog::showFault);
  showFault();
}

void TDataSourceDialog::makeFields(const TDataSource& source) {
  auto* form = new QFormLayout;
  static_cast<QVBoxLayout*>(layout())->addLayout(form);
  const auto members = queryMembers(project_.source.dbType);
  if (members.empty()) {
    fileName_ = new QLineEdit(QString::fromStdString(definitionText(source.definition)), this);
    fileName_->setObjectName(QStringLiteral("eFileName"));
    form->addRow(tr("&File name"), fileName_);
  }
  for (const TQueryMember& member : members) {
    const std::string key(member.member);
    const QString caption = text(std::string(member.caption));
    const QString value = memberText(source.definition, member.member);
    if (member.isQuery) {
      auto* edit = new QPlainTextEdit(value, this);
      edit->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
      edit->setTabChangesFocus(true);
      edit->setObjectName(QString::fromStdString("m_" + key));
      edit->setAccessibleName(caption);
      form->addRow(caption, texts_[key] = edit);
    } else {
      auto* edit = new QLineEdit(value, this);
      edit->setObjectName(QString::fromStdString("e_" + key));
      edit->setAccessibleName(caption);
      form->addRow(caption, lines_[key] = edit);
    }
  }
}

TValue TDataSourceDialog::definition() const {
  if (fileName_) return fileName_->text().toStdString();
  TObject object;
  for (const TQueryMember& member : queryMembers(project_.source.dbType)) {
    const std::string key(member.member);
    const QString value = member.isQuery ? texts_.at(key)->toPlainText() : lines_.at(key)->text();
    object.add(key, value.toStdString());
  }
  return object;
}

std::string TDataSourceDialog::queryFault() const {
  const TStoreConnector* store = context_.stores.find(project_.source.dbType);
  return store ? store->checkQuery(definition()) : std::string();
}

/// Nobody has to hear what is wrong with a query before it was begun.
void TDataSourceDialog::showFault() {
  const bool begun = std::any_of(texts_.begin(), texts_.end(),
                                 [](const auto& one) { return !one.second->toPlainText().isEmpty(); });
  fault_->setText(begun ? QString::fromStdString(queryFault()) : QString());
}

void TDataSourceDialog::accept() {
  const std::string fault = queryFault();
  const QString question = tr("Would you like to keep this query all the same?");
  if (fault.empty() || context_.prompt.confirm(fault + "\n" + question.toStdString())) QDialog::accept();
}

/// Reads the first rows on a thread of its own.
void TDataSourceDialog::bTestClick() {
  const TStoreConnector* store = context_.stores.find(project_.source.dbType);
  if (!store) return context_.prompt.error(runtexts::sourceUnsupported);
  const TDataSource source{name_, definition(), 0};
  TStopFlag stop;
  std::string shown;
  try {
    runWithWaitDialog(
        tr("Reading the first rows..."),
        [&] {
          TStoreOptions options = sourceOptions(project_, static_cast<std::size_t>(context_.settings.bufLen));
          options.fetchLimit = testRows;
          options.stop = &stop;
          const auto reader = store->connectSource(options);
          reader->openRoot(source, {});
          for (int row = 0; row < testRows && !stop.isSet(); ++row) {
            const auto read = reader->next();
            if (!read) break;
            shown += toPrettyJson(*read) + "\n";
          }
        },
        stop);
  } catch (const std::exception& error) {
    context_.prompt.error(error.what());
  }
  rows_->setPlainText(QString::fromStdString(shown));
}

}  // namespace hollowmere
