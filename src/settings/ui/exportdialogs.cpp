#include "settings/ui/exportdialogs.h"

#include <QDialogButtonBox>
#include <QFormLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>

#include "settings/connectionexport.h"

namespace hollowmere {

namespace {

QDialogButtonBox* addButtons(QDialog& dialog, const QString& okCaption) {
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  QPushButton* ok = buttons->button(QDialogButtonBox::Ok);
  ok->setObjectName(QStringLiteral("bOK"));
  ok->setText(okCaption);
  buttons->button(QDialogButtonBox::Cancel)->setObjectName(QStringLiteral("bCancel"));
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  return buttons;
}

QLineEdit* makePhrase(QWidget* parent, const char* name, const QString& accessibleName) {
  auto* line = new QLineEdit(parent);
  line->setObjectName(QLatin1String(name));
  line->setEchoMode(QLineEdit::Password);
  line->setAccessibleName(accessibleName);
  line->setMinimumWidth(line->fontMetrics().averageCharWidth() * 40);
  return line;
}

}  // namespace

TExportDialog::TExportDialog(TPrompt& prompt, QWidget* parent)
    : QDialog(parent),
      prompt_(prompt),
      bare_(new QRadioButton(tr("&Without passwords, as readable text"), this)),
      sealed_(new QRadioButton(tr("With passwords, &enciphered under a pass phrase"), this)),
      phrase_(makePhrase(this, "ePassPhrase", tr("Pass phrase"))),
      again_(makePhrase(this, "ePassPhraseAgain", tr("Pass phrase again"))) {
  setObjectName(QStringLiteral("exportDialog"));
  setWindowTitle(tr("Export Connections"));
  bare_->setObjectName(QStringLiteral("rbBare"));
  sealed_->setObjectName(QStringLiteral("rbSealed"));
  bare_->setChecked(true);
  auto* note =
      new QLabel(tr("The cipher (DES) keeps casual readers out. It does not withstand an expert: hand such a "
                    "file only to people who may know the passwords."),
                 this);
  note->setObjectName(QStringLiteral("lNote"));
  note->setWordWrap(true);
  auto* layout = new QFormLayout(this);
  layout->addRow(bare_);
  layout->addRow(sealed_);
  layout->addRow(tr("&Pass phrase"), phrase_);
  layout->addRow(tr("Pass phrase &again"), again_);
  layout->addRow(note);
  layout->addRow(addButtons(*this, tr("E&xport...")));
  const auto follow = [this, note](bool sealed) {
    phrase_->setEnabled(sealed);
    again_->setEnabled(sealed);
    note->setEnabled(sealed);
  };
  connect(sealed_, &QRadioButton::toggled, this, follow);
  follow(false);
}

std::optional<std::string> TExportDialog::passPhrase() const {
  return sealed_->isChecked() ? std::optional(phrase_->text().toStdString()) : std::nullopt;
}

void TExportDialog::accept() {
  const std::string refusal =
      sealed_->isChecked() ? checkPassPhrase(phrase_->text().toStdString(), again_->text().toStdString())
                           : std::string();
  if (refusal.empty()) return QDialog::accept();
  prompt_.warning(refusal);
  phrase_->setFocus();
}

TPassPhraseDialog::TPassPhraseDialog(QWidget* parent)
    : QDialog(parent), phrase_(makePhrase(this, "ePassPhrase", tr("Pass phrase"))) {
  setObjectName(QStringLiteral("passPhraseDialog"));
  setWindowTitle(tr("Import Connections"));
  auto* layout = new QFormLayout(this);
  layout->addRow(new QLabel(tr("The connections of this file are enciphered under a pass phrase."), this));
  layout->addRow(tr("&Pass phrase"), phrase_);
  layout->addRow(addButtons(*this, tr("&Import")));
}

std::string TPassPhraseDialog::passPhrase() const { return phrase_->text().toStdString(); }

}  // namespace hollowmere
