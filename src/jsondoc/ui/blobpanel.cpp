#include "jsondoc/ui/blobpanel.h"

#include <QBuffer>
#include <QComboBox>
#include <QFileDialog>
#include <QFontDatabase>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPlainTextEdit>
#include <QScrollArea>
#include <QTabBar>
#include <QTabWidget>
#include <QToolButton>
#include <QVBoxLayout>
#include <algorithm>

#include "jsondoc/binaryvalue.h"
#include "ui/icons.h"

namespace hollowmere {

namespace {

enum TPage { PicturePage, TextPage, OtherPage };

/// What the text and hexadecimal pages show of larger values: views of more are slow, and nobody reads it.
constexpr std::size_t shownBytes = 256 * 1024;

QString shown(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

int pageOf(TBytesForm form) {
  switch (form) {
    case TBytesForm::Picture: return PicturePage;
    case TBytesForm::Text: return TextPage;
    case TBytesForm::Other: break;
  }
  return OtherPage;
}

bool isFileExtension(const std::string& text) {
  return !text.empty() && std::all_of(text.begin(), text.end(), [](unsigned char c) {
    return c > ' ' && c != '/' && c != '\\' && c != ':' && c != '"';
  });
}

}  // namespace

TBlobPanel::TBlobPanel(TWindowContext& context, QWidget* parent) : QWidget(parent), context_(context) {
  setObjectName(QStringLiteral("blobPanel"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  buttons_ = new QHBoxLayout;
  layout->addLayout(buttons_);
  makeButtons();
  makePages();
  layout->addWidget(pages_, 1);
  state_ = new QLabel(this);
  state_->setObjectName(QStringLiteral("lBlobState"));
  state_->setWordWrap(true);
  layout->addWidget(state_);
  showNothing();
}

QToolButton* TBlobPanel::addButton(const char* name, const QString& caption, const char* icon,
                                   void (TBlobPanel::*click)()) {
  auto* button = new QToolButton(this);
  button->setObjectName(QLatin1String(name));
  button->setText(caption);
  button->setToolTip(caption);
  button->setIcon(themeIcon(icon));
  button->setFocusPolicy(Qt::TabFocus);
  button->setAutoRaise(true);
  buttons_->addWidget(button);
  connect(button, &QToolButton::clicked, this, click);
  return button;
}

void TBlobPanel::makeButtons() {
  load_ = addButton("bBlobLoad", tr("Load Binary Value From File"), "document-open", &TBlobPanel::load);
  save_ = addButton("bBlobSave", tr("Save Binary Value To File"), "document-save", &TBlobPanel::save);
  clear_ = addButton("bBlobClear", tr("Clear Binary Value"), "edit-clear", &TBlobPanel::clear);
  buttons_->addStretch();
  extension_ = new QComboBox(this);
  extension_->setObjectName(QStringLiteral("cbBlobType"));
  extension_->setAccessibleName(tr("Type of the binary data"));
  extension_->setToolTip(tr("File type for opening in another program"));
  extension_->setEditable(true);
  for (const std::string_view each : knownExtensions()) extension_->addItem(shown(each));
  buttons_->addWidget(extension_);
  open_ = addButton("bBlobOpen", tr("Open Binary Value In Another Program"), "document-open-external",
                    &TBlobPanel::openOutside);
}

QPlainTextEdit* TBlobPanel::makeView(const char* name, const QString& caption) {
  auto* view = new QPlainTextEdit(pages_);
  view->setObjectName(QLatin1String(name));
  view->setAccessibleName(caption);
  view->setReadOnly(true);
  view->setTabChangesFocus(true);
  view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
  return view;
}

void TBlobPanel::makePages() {
  pages_ = new QTabWidget(this);
  pages_->setObjectName(QStringLiteral("pcBlob"));
  pages_->tabBar()->setObjectName(QStringLiteral("tabBlob"));
  pages_->tabBar()->setAccessibleName(tr("Form of the binary value"));
  auto* area = new QScrollArea(pages_);
  area->setObjectName(QStringLiteral("blobPictureArea"));
  area->setAccessibleName(tr("Binary value as a picture"));
  area->setAlignment(Qt::AlignCenter);
  picture_ = new QLabel(area);
  picture_->setObjectName(QStringLiteral("imgBlob"));
  picture_->setAlignment(Qt::AlignCenter);
  area->setWidget(picture_);
  area->setWidgetResizable(true);
  text_ = makeView("mBlobText", tr("Binary value as text"));
  hex_ = makeView("mBlobHex", tr("Binary value in hexadecimal digits"));
  hex_->setLineWrapMode(QPlainTextEdit::NoWrap);
  pages_->addTab(area, tr("Picture"));
  pages_->addTab(text_, tr("Text"));
  pages_->addTab(hex_, tr("Other"));
  connect(pages_, &QTabWidget::currentChanged, this, &TBlobPanel::fillPage);
}

void TBlobPanel::showBytes(std::string bytes) {
  bytes_ = std::move(bytes);
  hasBytes_ = true;
  filled_ = 0;
  const TBytesType type = typeOfBytes(bytes_);
  extension_->setEditText(shown(type.extension));
  state_->setText(tr("%1 bytes").arg(QLocale().toString(static_cast<qulonglong>(bytes_.size()))));
  pages_->setCurrentIndex(pageOf(type.form));
  fillPage();
  enableButtons();
}

void TBlobPanel::showNothing(bool mayLoad) {
  bytes_.clear();
  hasBytes_ = false;
  mayLoad_ = mayLoad;
  filled_ = 0;
  extension_->clearEditText();
  state_->setText(tr("No binary value is selected."));
  fillPage();
  enableButtons();
}

void TBlobPanel::showText(std::string_view text, bool mayLoad) {
  mayLoad_ = mayLoad;
  if (auto bytes = bytesOfText(text))
    showBytes(std::move(*bytes));
  else
    showNothing(mayLoad);
}

void TBlobPanel::setReadOnly(bool readOnly) {
  readOnly_ = readOnly;
  enableButtons();
}

void TBlobPanel::enableButtons() {
  load_->setEnabled(!readOnly_ && (hasBytes_ || mayLoad_));
  clear_->setEnabled(!readOnly_ && hasBytes_);
  save_->setEnabled(hasBytes_);
  open_->setEnabled(hasBytes_);
  extension_->setEnabled(hasBytes_);
  pages_->setEnabled(hasBytes_);
}

void TBlobPanel::fillPage() {
  const int page = pages_->currentIndex();
  if (page < 0 || (filled_ & 1U << page)) return;
  filled_ |= 1U << page;
  const std::string_view part = std::string_view(bytes_).substr(0, shownBytes);
  QString rest;
  if (part.size() < bytes_.size())
    rest =
        tr("\n(The first %1 bytes are shown.)").arg(QLocale().toString(static_cast<qulonglong>(part.size())));
  if (page == PicturePage) fillPicture();
  if (page == TextPage) text_->setPlainText(shown(part).replace(QChar(0), QChar(0xfffd)) + rest);
  if (page == OtherPage) hex_->setPlainText(shown(hexDump(part)) + rest);
}

void TBlobPanel::fillPicture() {
  picture_->clear();
  if (bytes_.empty()) return;
  QByteArray encoded = QByteArray::fromRawData(bytes_.data(), static_cast<qsizetype>(bytes_.size()));
  QBuffer buffer(&encoded);
  buffer.open(QIODevice::ReadOnly);
  QImageReader reader(&buffer);
  reader.setDecideFormatFromContent(true);
  reader.setAutoTransform(true);
  const QImage image = reader.read();
  if (image.isNull())
    picture_->setText(tr("These bytes are no picture that can be shown."));
  else
    picture_->setPixmap(QPixmap::fromImage(image));
}

void TBlobPanel::load() {
  const QString name = QFileDialog::getOpenFileName(this, tr("Load Binary Value"));
  if (name.isEmpty()) return;
  try {
    showBytes(readWholeFile(name.toStdString()));
  } catch (const TFileError& error) {
    return context_.prompt.error(error.what());
  }
  Q_EMIT edited(QString::fromStdString(textOfBytes(bytes_)));
}

std::string TBlobPanel::chosenExtension() const {
  QString text = extension_->currentText().trimmed();
  while (text.startsWith(QLatin1Char('.'))) text.remove(0, 1);
  return text.toStdString();
}

void TBlobPanel::save() {
  const QString proposed = QStringLiteral("data.") + QString::fromStdString(chosenExtension());
  const QString name = QFileDialog::getSaveFileName(this, tr("Save Binary Value"), proposed);
  if (name.isEmpty()) return;
  try {
    writeWholeFile(context_.files, name.toStdString(), bytes_);
  } catch (const TFileError& error) {
    context_.prompt.error(error.what());
  }
}

void TBlobPanel::clear() {
  showBytes({});
  Q_EMIT edited({});
}

void TBlobPanel::openOutside() {
  const std::string extension = chosenExtension();
  if (extension.empty()) return context_.prompt.error("Please specify binary data type.");
  if (!isFileExtension(extension))
    return context_.prompt.error(tr("\"%1\" is not a file type such as png or pdf.")
                                     .arg(QString::fromStdString(extension))
                                     .toStdString());
  const std::string name = context_.folder.file("data", "data." + extension);
  try {
    writeWholeFile(context_.files, name, bytes_);
  } catch (const TFileError& error) {
    return context_.prompt.error(error.what());
  }
  context_.openOutside(QString::fromStdString(name));
}

}  // namespace hollowmere
