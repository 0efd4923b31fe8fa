#include "jsondoc/ui/frmviewjson.h"

#include <QAction>
#include <QDialogButtonBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QPushButton>
#include <QSettings>
#include <QSplitter>
#include <QTabBar>
#include <QTabWidget>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>

#include "jsondoc/ui/blobpanel.h"
#include "jsondoc/ui/jsontreemodel.h"
#include "jsondoc/ui/jsontreeview.h"
#include "ui/codeeditor.h"
#include "ui/icons.h"
#include "ui/placement.h"

namespace hollowmere {

namespace {

enum TPage { TreePage, TextPage };

const QString& placementGroup() {
  static const QString group = QStringLiteral("viewJson");
  return group;
}

}  // namespace

TfrmViewJSON::TfrmViewJSON(TWindowContext& context, TValue document, const TViewJsonOptions& options,
                           QWidget* parent)
    : QDialog(parent), context_(context), readOnly_(options.readOnly), tree_(context.dates) {
  setObjectName(QStringLiteral("frmViewJSON"));
  setWindowTitle(options.title.isEmpty() ? text("View/Modify JSON Document") : options.title);
  setWindowFlag(Qt::WindowMaximizeButtonHint);
  tree_.setDocument(std::move(document));
  model_ = std::make_unique<TJsonTreeModel>(tree_);
  model_->setReadOnly(readOnly_);
  auto* layout = new QVBoxLayout(this);
  bar_ = new QToolBar(this);
  bar_->setObjectName(QStringLiteral("jsonBar"));
  bar_->setIconSize(QSize(16, 16));
  layout->addWidget(bar_);
  pages_ = new QTabWidget(this);
  pages_->setObjectName(QStringLiteral("pcDocument"));
  pages_->tabBar()->setObjectName(QStringLiteral("tabDocument"));
  pages_->tabBar()->setAccessibleName(tr("Form of the document"));
  layout->addWidget(pages_, 1);
  state_ = new QLabel(this);
  state_->setObjectName(QStringLiteral("lState"));
  state_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  // A long path is cut, it does not widen the window.
  state_->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
  layout->addWidget(state_);
  makeTreePage();
  makeTextPage();
  makeActions();
  makeMenus();
  makeButtons();
  connect(pages_, &QTabWidget::currentChanged, this, &TfrmViewJSON::onPage);
  resize(fontMetrics().averageCharWidth() * 130, fontMetrics().height() * 36);
  restorePlacement(context_.store, placementGroup(), *this);
  restoreState(context_.store, placementGroup(), *splitter_);
  restoreState(context_.store, placementGroup(), *view_->header(), view_->objectName());
  view_->expandAsLoaded();
  if (!context_.store.contains(placementGroup() + QLatin1Char('/') + view_->objectName()))
    view_->resizeColumnToContents(TJsonTreeModel::NameColumn);
  view_->setCurrentIndex(model_->index(0, TJsonTreeModel::NameColumn));
  view_->setFocus();
  onCurrent();
}

TfrmViewJSON::~TfrmViewJSON() {
  savePlacement(context_.store, placementGroup(), *this);
  saveState(context_.store, placementGroup(), *splitter_);
  saveState(context_.store, placementGroup(), *view_->header(), view_->objectName());
}

QAction* TfrmViewJSON::addAction(const char* name, const QString& caption, const char* icon,
                                 const QKeySequence& keys, void (TfrmViewJSON::*call)()) {
  auto* action = new QAction(themeIcon(icon), caption, this);
  action->setObjectName(QLatin1String(name));
  action->setShortcut(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  if (!keys.isEmpty())
    action->setToolTip(caption + QLatin1String(" (") + keys.toString(QKeySequence::NativeText) +
                       QLatin1Char(')'));
  connect(action, &QAction::triggered, this, call);
  actions_[name] = action;
  return action;
}

void TfrmViewJSON::makeActions() {
  const auto onBar = [this](QAction* action) { bar_->addAction(action); };
  // Keys that edit the tree act in the tree only.
  const auto inTree = [this](QAction* action) { view_->addAction(action); };
  const auto both = [&](QAction* action) {
    onBar(action);
    inTree(action);
  };
  const auto everywhere = [this](QAction* action) {
    bar_->addAction(action);
    QWidget::addAction(action);
  };
  both(addAction("actAdd", tr("Add"), "list-add", tr("Ins"), &TfrmViewJSON::onAdd));
  auto* nested = new QToolButton(bar_);
  nested->setObjectName(QStringLiteral("bAddNested"));
  nested->setIcon(themeIcon("list-add-nested"));
  nested->setToolTip(text("Nested JSON Object/List"));
  nested->setAccessibleName(text("Nested JSON Object/List"));
  nested->setPopupMode(QToolButton::InstantPopup);
  auto* menu = new QMenu(nested);
  menu->setObjectName(QStringLiteral("pmNested"));
  menu->addAction(
      addAction("actNestedObject", text("Nested JSON Object"), "", {}, &TfrmViewJSON::onNestedObject));
  menu->addAction(addAction("actNestedList", text("Nested JSON List"), "", {}, &TfrmViewJSON::onNestedList));
  nested->setMenu(menu);
  bar_->addWidget(nested);
  both(addAction("actDelete", tr("Delete"), "list-remove", QKeySequence::Delete, &TfrmViewJSON::onDelete));
  onBar(addAction("actClear", tr("Clear"), "edit-clear", {}, &TfrmViewJSON::onClear));
  both(addAction("actUp", tr("Up"), "go-up", tr("Ctrl+Up"), &TfrmViewJSON::onUp));
  both(addAction("actDown", tr("Down"), "go-down", tr("Ctrl+Down"), &TfrmViewJSON::onDown));
  bar_->addSeparator();
  both(addAction("actUndoEdit", tr("Undo"), "edit-undo", QKeySequence::Undo, &TfrmViewJSON::onUndo));
  both(addAction("actRedoEdit", tr("Redo"), "edit-redo", QKeySequence::Redo, &TfrmViewJSON::onRedo));
  bar_->addSeparator();
  everywhere(
      addAction("actFormat", tr("Format"), "view-list-text", tr("Ctrl+Shift+F"), &TfrmViewJSON::onFormat));
  everywhere(
      addAction("actLoad", tr("Load From File"), "document-open", QKeySequence::Open, &TfrmViewJSON::onLoad));
  everywhere(
      addAction("actSave", tr("Save To File"), "document-save", QKeySequence::Save, &TfrmViewJSON::onSave));
  everywhere(
      addAction("actPrint", tr("Print"), "document-print", QKeySequence::Print, &TfrmViewJSON::onPrint));
  bar_->addSeparator();
  QAction* blob = addAction("actBlob", tr("Binary Value"), "document-edit", {}, &TfrmViewJSON::onBlobPanel);
  blob->setCheckable(true);
  blob->setChecked(context_.store.value(placementGroup() + QLatin1String("/blobShown"), false).toBool());
  onBar(blob);
  inTree(addAction("actCopyValue", tr("Copy Value"), "", QKeySequence::Copy, &TfrmViewJSON::onCopyValue));
  inTree(addAction("actCopyPath", tr("Copy Path"), "", tr("Ctrl+Shift+C"), &TfrmViewJSON::onCopyPath));
  inTree(addAction("actPaste", tr("Paste As Child"), "", QKeySequence::Paste, &TfrmViewJSON::onPaste));
  inTree(addAction("actExpandAll", tr("Expand All"), "", {}, &TfrmViewJSON::onExpandAll));
  QWidget* page = pages_->widget(TreePage);
  page->addAction(addAction("actFind", tr("Find"), "", QKeySequence::Find, &TfrmViewJSON::onFind));
  page->addAction(addAction("actFindNext", tr("Find Next"), "go-down", QKeySequence::FindNext,
                            &TfrmViewJSON::onFindNext));
  page->addAction(addAction("actFindPrevious", tr("Find Previous"), "go-up", QKeySequence::FindPrevious,
                            &TfrmViewJSON::onFindPrevious));
}

void TfrmViewJSON::makeMenus() {
  kinds_ = new QMenu(tr("Change &Kind"), this);
  kinds_->setObjectName(QStringLiteral("pmKind"));
  const auto add = [this](const QString& caption, TKind kind) {
    QAction* action = kinds_->addAction(caption);
    action->setObjectName(QStringLiteral("actKind%1").arg(static_cast<int>(kind)));
    connect(action, &QAction::triggered, this, [this, kind] { convert(kind); });
  };
  add(tr("Text"), TKind::Text);
  add(tr("Number"), TKind::Int);
  add(tr("Boolean"), TKind::Boolean);
  add(tr("Null"), TKind::Null);
  add(tr("Date-Time"), TKind::DateTime);
  add(tr("Binary"), TKind::Binary);
  add(text("JSON Object"), TKind::Object);
  add(text("JSON List"), TKind::List);
  connect(view_, &QWidget::customContextMenuRequested, this, &TfrmViewJSON::showMenu);
}

void TfrmViewJSON::showMenu(const QPoint& at) {
  QMenu menu(this);
  menu.setObjectName(QStringLiteral("pmTree"));
  const auto add = [&](const char* name) { menu.addAction(actions_.at(name)); };
  if (!readOnly_) {
    for (const char* name : {"actAdd", "actNestedObject", "actNestedList", "actDelete", "actUp", "actDown"})
      add(name);
    menu.addMenu(kinds_)->setEnabled(static_cast<bool>(place()));
    menu.addSeparator();
  }
  for (const char* name : {"actCopyValue", "actCopyPath"}) add(name);
  if (!readOnly_) add("actPaste");
  menu.addSeparator();
  for (const char* name : {"actFind", "actExpandAll", "actBlob"}) add(name);
  menu.exec(view_->viewport()->mapToGlobal(at));
}

void TfrmViewJSON::makeTreePage() {
  auto* page = new QWidget(pages_);
  auto* layout = new QVBoxLayout(page);
  auto* row = new QHBoxLayout;
  layout->addLayout(row);
  find_ = new QLineEdit(page);
  find_->setObjectName(QStringLiteral("eFind"));
  find_->setPlaceholderText(tr("Find in names and values"));
  find_->setAccessibleName(tr("Find in names and values"));
  find_->setClearButtonEnabled(true);
  findCount_ = new QLabel(page);
  findCount_->setObjectName(QStringLiteral("lFindCount"));
  row->addWidget(find_, 1);
  row->addWidget(findCount_);
  splitter_ = new QSplitter(page);
  splitter_->setObjectName(QStringLiteral("jsonSplitter"));
  splitter_->setChildrenCollapsible(false);
  layout->addWidget(splitter_, 1);
  view_ = new TJsonTreeView(splitter_);
  view_->setObjectName(QStringLiteral("tlJSON"));
  view_->setAccessibleName(tr("Document as a tree"));
  view_->setTreeModel(model_.get());
  blob_ = new TBlobPanel(context_, splitter_);
  blob_->setReadOnly(readOnly_);
  splitter_->setStretchFactor(0, 3);
  splitter_->setStretchFactor(1, 2);
  pages_->addTab(page, tr("T&ree"));
  connect(find_, &QLineEdit::textChanged, this, &TfrmViewJSON::onTerms);
  connect(find_, &QLineEdit::returnPressed, this, &TfrmViewJSON::onFindNext);
  connect(view_, &TJsonTreeView::currentPlaceChanged, this, &TfrmViewJSON::onCurrent);
  connect(view_, &TJsonTreeView::copyWanted, this, &TfrmViewJSON::onCopyValue);
  connect(view_, &TJsonTreeView::longValueActivated, this, &TfrmViewJSON::onLongValue);
  connect(blob_, &TBlobPanel::edited, this, &TfrmViewJSON::onBlobEdited);
  for (const auto signal : {&QAbstractItemModel::rowsInserted, &QAbstractItemModel::rowsRemoved})
    connect(model_.get(), signal, this, &TfrmViewJSON::onTreeChanged);
  connect(model_.get(), &QAbstractItemModel::rowsMoved, this, &TfrmViewJSON::onTreeChanged);
  connect(model_.get(), &QAbstractItemModel::dataChanged, this, &TfrmViewJSON::onTreeChanged);
  connect(model_.get(), &QAbstractItemModel::modelReset, this, [this] {
    view_->expandAsLoaded();
    onTreeChanged();
  });
}

void TfrmViewJSON::makeTextPage() {
  text_ = new TCodeEditor(TCodeLanguage::Json, pages_);
  text_->setNames("mText", tr("Document as text"));
  text_->setReadOnly(readOnly_);
  pages_->addTab(text_, tr("Te&xt"));
  connect(text_, &TCodeEditor::cursorMoved, this, &TfrmViewJSON::showState);
}

void TfrmViewJSON::makeButtons() {
  auto* buttons = new QDialogButtonBox(this);
  if (!readOnly_) {
    QPushButton* ok = buttons->addButton(QDialogButtonBox::Ok);
    ok->setObjectName(QStringLiteral("bOK"));
    ok->setShortcut(tr("Ctrl+Return"));
  }
  buttons->addButton(readOnly_ ? QDialogButtonBox::Close : QDialogButtonBox::Cancel)
      ->setObjectName(QStringLiteral("bCancel"));
  // Enter belongs to the tree and the text.
  for (QAbstractButton* button : buttons->buttons()) static_cast<QPushButton*>(button)->setAutoDefault(false);
  layout()->addWidget(buttons);
  connect(buttons, &QDialogButtonBox::accepted, this, &TfrmViewJSON::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &TfrmViewJSON::reject);
}

}  // namespace hollowmere
