#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QMenu>
#include <QSettings>
#include <QTabWidget>
#include <QTextDocument>

#include "connectors/loadtypes.h"
#include "json/json.h"
#include "jsondoc/binaryvalue.h"
#include "jsondoc/keepkinds.h"
#include "jsondoc/scalartext.h"
#include "jsondoc/treehtml.h"
#include "jsondoc/ui/blobpanel.h"
#include "jsondoc/ui/frmviewjson.h"
#include "jsondoc/ui/jsontreemodel.h"
#include "jsondoc/ui/jsontreeview.h"
#include "jsondoc/ui/valuedialog.h"
#include "ui/codeeditor.h"
#include "ui/printing.h"
#include "ui/qtmainthread.h"

// What the actions of the document window do; its parts are made in frmviewjson.cpp.

namespace hollowmere {

namespace {

/// More rows than that fill thousands of pages.
constexpr std::size_t printedRows = 20000;
constexpr qint64 countMilliseconds = 200;
/// Texts above that are read and written beside the windows, with a way to stop.
constexpr std::size_t quickBytes = 1024 * 1024;
constexpr std::size_t quickRows = 20000;

QString blobShownKey() { return QStringLiteral("viewJson/blobShown"); }

QString fileFilter() { return QCoreApplication::translate("Messages", "JSON files (*.json);;All files (*)"); }

bool isLarge(const TJsonTree& tree) {
  std::size_t rows = 0;
  tree.visit([&rows](std::string_view, const TValue&) { return ++rows < quickRows; });
  return rows == quickRows;
}

QString counted(const TJsonTree& tree) {
  const auto count = static_cast<int>(tree.root().size());
  return tree.root().kind() == TKind::List
             ? QCoreApplication::translate("Messages", "JSON list, items: %1").arg(QLocale().toString(count))
             : QCoreApplication::translate("Messages", "JSON object, members: %1")
                   .arg(QLocale().toString(count));
}

/// The kind of a row and how much it holds, for the status line.
QString described(TJsonPlace at) {
  const auto translate = [](const char* text) { return QCoreApplication::translate("Messages", text); };
  const auto number = [](std::size_t count) { return QLocale().toString(static_cast<qulonglong>(count)); };
  const TKind kind = TJsonTree::kindAt(at);
  if (kind == TKind::List) return translate("list, items: %1").arg(number(TJsonTree::childCount(at)));
  if (kind == TKind::Object) return translate("object, members: %1").arg(number(TJsonTree::childCount(at)));
  const std::string_view name = kindName(kind);
  const QString shown = QString::fromUtf8(name.data(), static_cast<qsizetype>(name.size()));
  const TValue& value = TJsonTree::item(at).value;
  if (kind == TKind::Binary) return translate("%1, bytes: %2").arg(shown, number(value.asText().size()));
  if (kind == TKind::Text)
    return translate("%1, characters: %2")
        .arg(shown, number(static_cast<std::size_t>(QString::fromStdString(value.asText()).size())));
  return shown;
}

}  // namespace

bool TfrmViewJSON::onTextPage() const { return pages_->currentIndex() == 1; }

TJsonPlace TfrmViewJSON::place() const { return view_->current(); }

bool TfrmViewJSON::work(bool large, const QString& caption, const std::function<void()>& call) {
  TStopFlag stop;
  if (large)
    runWithWaitDialog(caption, call, stop);
  else
    call();
  return !stop.isSet();
}

// The tree

void TfrmViewJSON::onAdd() { view_->editCell(tree_.add(place()), TJsonTreeModel::NameColumn); }

void TfrmViewJSON::addNested(TKind kind) {
  view_->editCell(tree_.addNested(place(), kind), TJsonTreeModel::NameColumn);
}

void TfrmViewJSON::onNestedObject() { addNested(TKind::Object); }

void TfrmViewJSON::onNestedList() { addNested(TKind::List); }

void TfrmViewJSON::onDelete() {
  if (place()) view_->setCurrent(tree_.remove(place()));
}

void TfrmViewJSON::onClear() {
  if (!context_.prompt.confirm("Are you sure to delete all JSON document data?")) return;
  tree_.clear();
  if (onTextPage()) fillText();
}

void TfrmViewJSON::onUp() {
  if (place()) view_->setCurrent(tree_.moveUp(place()));
}

void TfrmViewJSON::onDown() {
  if (place()) view_->setCurrent(tree_.moveDown(place()));
}

void TfrmViewJSON::onUndo() { view_->setCurrent(tree_.undo()); }

void TfrmViewJSON::onRedo() { view_->setCurrent(tree_.redo()); }

void TfrmViewJSON::convert(TKind kind) {
  const TJsonPlace at = place();
  if (!at) return;
  const bool nested = kind == TKind::Object || kind == TKind::List;
  const bool done = nested ? tree_.setValueText(at, kind == TKind::List ? listMarker : objectMarker)
                           : tree_.convert(at, kind);
  if (!done) QApplication::beep();
  view_->setCurrent(at);
}

void TfrmViewJSON::onExpandAll() {
  if (isLarge(tree_))
    view_->expandRecursively(view_->currentIndex());
  else
    view_->expandAll();
}

void TfrmViewJSON::onLongValue(const QModelIndex& index) {
  const TJsonPlace at = TJsonTreeModel::placeOf(index);
  const QString name = QString::fromStdString(TJsonTree::nameAt(at));
  TValueDialog dialog(context_.store, readOnly_ ? name : tr("Edit %1").arg(name), TJsonTree::valueTextAt(at),
                      readOnly_, this);
  if (dialog.exec() == QDialog::Accepted) tree_.setValueText(at, dialog.text());
}

void TfrmViewJSON::onCopyValue() {
  const TJsonPlace at = place();
  if (!at) return;
  const std::string value =
      TJsonTree::isContainer(at) ? toPrettyJson(tree_.valueAt(at)) : TJsonTree::valueTextAt(at);
  QApplication::clipboard()->setText(QString::fromStdString(value));
}

void TfrmViewJSON::onCopyPath() {
  if (place()) QApplication::clipboard()->setText(QString::fromStdString(TJsonTree::pathOf(place())));
}

/// JSON text as what it says, every other text as a text.
void TfrmViewJSON::onPaste() {
  const std::string given = QApplication::clipboard()->text().toStdString();
  if (given.empty()) return;
  TValue value;
  try {
    value = parseJson(given);
  } catch (const TJsonError&) {
    value = typedScalar(given);
  }
  view_->setCurrent(tree_.addValue(place(), {}, std::move(value)));
}

// Finding

bool TfrmViewJSON::suits(std::string_view name, const TValue& value) const {
  if (search_.isIn(name)) return true;
  if (value.is(TKind::Text)) return search_.isIn(value.asText());
  return !value.isNested() && !value.is(TKind::Binary) && search_.isIn(scalarText(value));
}

void TfrmViewJSON::onTerms() {
  search_ = TTextSearch({find_->text(), false, false});
  if (search_.empty()) return findCount_->clear();
  QElapsedTimer timer;
  timer.start();
  int found = 0;
  bool more = false;
  tree_.visit([&](std::string_view name, const TValue& value) {
    if (suits(name, value)) ++found;
    more = timer.elapsed() > countMilliseconds;
    return !more;
  });
  const QString number = QLocale().toString(found);
  findCount_->setText(more ? tr("More than %1 found").arg(number) : tr("%1 found").arg(number));
}

void TfrmViewJSON::find(bool forward) {
  if (search_.empty()) return onFind();
  const TJsonTree::TSuits suit = [this](std::string_view name, const TValue& value) {
    return suits(name, value);
  };
  TJsonPlace found = tree_.find(place(), forward, suit);
  if (!found) found = tree_.find({}, forward, suit);
  if (found) view_->setCurrent(found);
}

void TfrmViewJSON::onFind() {
  find_->selectAll();
  find_->setFocus();
}

void TfrmViewJSON::onFindNext() { find(true); }

void TfrmViewJSON::onFindPrevious() { find(false); }

// Binary values

void TfrmViewJSON::onBlobPanel() {
  context_.store.setValue(blobShownKey(), actions_.at("actBlob")->isChecked());
  showBlob(false);
}

void TfrmViewJSON::onBlobEdited(const QString& text) {
  const TJsonPlace at = place();
  if (!at || TJsonTree::isContainer(at)) return;
  const std::string given = text.toStdString();
  const TValue& old = TJsonTree::item(at).value;
  // A text that holds bytes stays a text; an empty one cannot be told from others and is left so.
  tree_.setScalar(at, old.is(TKind::Text) ? TValue(given) : editedScalar(old, given, context_.dates));
}

void TfrmViewJSON::showBlob(bool comesUp) {
  const TJsonPlace at = place();
  const bool scalar = at && !TJsonTree::isContainer(at);
  const bool binary = scalar && mayHoldBytes(TJsonTree::item(at).value);
  if (binary && comesUp) actions_.at("actBlob")->setChecked(true);
  const bool shown = actions_.at("actBlob")->isChecked();
  blob_->setVisible(shown);
  if (!shown) return;
  auto bytes = binary ? bytesOfValue(TJsonTree::item(at).value) : std::nullopt;
  if (bytes)
    blob_->showBytes(std::move(*bytes));
  else
    blob_->showNothing(scalar);
}

// Both pages

void TfrmViewJSON::onCurrent() {
  showBlob(true);
  enableActions();
  showState();
}

void TfrmViewJSON::onTreeChanged() {
  textIsOld_ = true;
  if (!search_.empty()) onTerms();
  // Changes come in the middle of edits: what is shown of the row is brought up afterwards.
  if (!std::exchange(updateWaits_, true))
    QMetaObject::invokeMethod(
        this,
        [this] {
          updateWaits_ = false;
          onCurrent();
        },
        Qt::QueuedConnection);
}

void TfrmViewJSON::enableActions() {
  const TJsonPlace at = place();
  const bool edits = !readOnly_, tree = !onTextPage();
  const auto enable = [this](const char* name, bool on) { actions_.at(name)->setEnabled(on); };
  for (const char* name : {"actAdd", "actNestedObject", "actNestedList", "actPaste"})
    enable(name, edits && tree);
  enable("actDelete", edits && tree && at);
  enable("actClear", edits && tree_.root().size() > 0);
  enable("actUp", edits && tree && at && at.row > 0);
  enable("actDown", edits && tree && at && at.row + 1 < at.branch->size());
  enable("actUndoEdit", edits && tree && tree_.canUndo());
  enable("actRedoEdit", edits && tree && tree_.canRedo());
  enable("actFormat", edits && !tree);
  enable("actLoad", edits);
  enable("actCopyValue", static_cast<bool>(at));
  enable("actCopyPath", static_cast<bool>(at));
  enable("actBlob", tree);
}

void TfrmViewJSON::showState() {
  if (onTextPage()) {
    state_->setText(tr("Line %1, column %2").arg(text_->line()).arg(text_->column()));
    return;
  }
  const TJsonPlace at = place();
  if (!at) return state_->setText(counted(tree_));
  const QString path = QString::fromStdString(TJsonTree::pathOf(at));
  state_->setText(path + QStringLiteral(" \u2014 ") + described(at));
}

void TfrmViewJSON::fillText() {
  const TValue document = tree_.document();
  std::string shown;
  const bool done =
      work(isLarge(tree_), tr("Writing the document as text..."), [&] { shown = toPrettyJson(document); });
  if (!done) return pages_->setCurrentIndex(0);
  text_->setText(shown);
  textIsOld_ = false;
}

bool TfrmViewJSON::take(const std::string& given, bool fromPage) {
  TJsonReading reading;
  if (!work(given.size() > quickBytes, tr("Reading the document..."), [&] { reading = readDocument(given); }))
    return false;
  if (reading.document) {
    if (fromPage) keepKinds(tree_.document(), *reading.document);
    tree_.replaceDocument(std::move(*reading.document));
    return true;
  }
  if (fromPage) text_->goTo(reading.fault.offset);
  context_.prompt.error(invalidDocument);
  state_->setText(QString::fromStdString(reading.fault.reason));
  return false;
}

bool TfrmViewJSON::takeText() {
  if (!text_->isModified()) return true;
  if (!take(text_->text(), true)) return false;
  text_->setModified(false);
  textIsOld_ = false;
  return true;
}

void TfrmViewJSON::onPage(int page) {
  if (turningBack_) return;
  if (page == 1) {
    if (textIsOld_) fillText();
    text_->setFocus();
  } else if (!takeText()) {
    turningBack_ = true;
    pages_->setCurrentIndex(1);
    turningBack_ = false;
    text_->setFocus();
    return;
  }
  onCurrent();
}

void TfrmViewJSON::onFormat() {
  const std::string given = text_->text();
  TJsonReading reading;
  std::string formatted;
  const bool done = work(given.size() > quickBytes, tr("Formatting the document..."), [&] {
    reading = readDocument(given);
    if (reading.document) formatted = toPrettyJson(*reading.document);
  });
  if (!done) return;
  if (!reading.document) {
    text_->goTo(reading.fault.offset);
    context_.prompt.error(invalidDocument);
    return state_->setText(QString::fromStdString(reading.fault.reason));
  }
  if (formatted != given) text_->replaceText(formatted);
}

void TfrmViewJSON::onLoad() {
  const QString name = QFileDialog::getOpenFileName(this, tr("Load JSON Document"), {}, fileFilter());
  if (name.isEmpty()) return;
  try {
    if (!take(readWholeFile(name.toStdString()), false)) return;
  } catch (const TFileError& error) {
    return context_.prompt.error(error.what());
  }
  if (onTextPage()) fillText();
}

void TfrmViewJSON::onSave() {
  if (onTextPage() && !takeText()) return;
  QString name = QFileDialog::getSaveFileName(this, tr("Save JSON Document"), {}, fileFilter());
  if (name.isEmpty()) return;
  if (QFileInfo(name).suffix().isEmpty()) name += QLatin1String(".json");
  try {
    writeWholeFile(context_.files, name.toStdString(),
                   onTextPage() ? text_->text() : toPrettyJson(tree_.document()) + "\n");
  } catch (const TFileError& error) {
    context_.prompt.error(error.what());
  }
}

void TfrmViewJSON::onPrint() {
  if (onTextPage() && !takeText()) return;
  const auto html = treeHtml(tree_, printedRows);
  if (!html)
    return context_.prompt.error(tr("The document has more than %1 rows and is too large to be printed.")
                                     .arg(printedRows)
                                     .toStdString());
  QTextDocument document;
  document.setHtml(QString::fromStdString(*html));
  if (printDocument(context_, this, document, windowTitle()))
    context_.prompt.ask(TPromptKind::Information, "JSON document has been printed.", TButtons::Ok);
}

void TfrmViewJSON::accept() {
  if (readOnly_) return reject();
  if (onTextPage() && !takeText()) return;
  result_ = tree_.document();
  QDialog::accept();
}

}  // namespace hollowmere
