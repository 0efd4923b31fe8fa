#pragma once

#include <QDialog>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>

#include "jsondoc/jsontext.h"
#include "jsondoc/jsontree.h"
#include "jsondoc/ui/viewjson.h"
#include "ui/textsearch.h"
#include "ui/windowcontext.h"

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QSplitter;
class QTabWidget;
class QToolBar;

namespace hollowmere {

class TBlobPanel;
class TCodeEditor;
class TJsonTreeModel;
class TJsonTreeView;

/// "View/Modify JSON Document": a document as a tree and as text. Whichever page is seen holds the document
/// as it is now; going to the other takes the edits over.
class TfrmViewJSON : public QDialog {
  Q_OBJECT

 public:
  /// document: an object or a list.
  TfrmViewJSON(TWindowContext& context, TValue document, const TViewJsonOptions& options,
               QWidget* parent = nullptr);
  ~TfrmViewJSON() override;

  /// The document after OK; once.
  TValue takeDocument() { return std::move(result_); }
  /// Whether anything was changed.
  [[nodiscard]] bool isChanged() const { return tree_.isChanged(); }

  void accept() override;

 private:
  void makeActions();
  void makeMenus();
  QAction* addAction(const char* name, const QString& caption, const char* icon, const QKeySequence& keys,
                     void (TfrmViewJSON::*call)());
  void makeTreePage();
  void makeTextPage();
  void makeButtons();

  void onAdd();
  void onNestedObject();
  void onNestedList();
  void onDelete();
  void onClear();
  void onUp();
  void onDown();
  void onUndo();
  void onRedo();
  void onFormat();
  void onLoad();
  void onSave();
  void onPrint();
  void onCopyValue();
  void onCopyPath();
  void onPaste();
  void onFind();
  void onFindNext();
  void onFindPrevious();
  void onExpandAll();
  void onBlobPanel();

  void onPage(int page);
  void onCurrent();
  void onTreeChanged();
  void onBlobEdited(const QString& text);
  void onLongValue(const QModelIndex& index);
  void onTerms();
  void convert(TKind kind);
  void find(bool forward);
  void addNested(TKind kind);
  void showBlob(bool comesUp);
  void fillText();
  bool takeText();
  /// Takes a document's text, of the text page or from elsewhere, into the tree; says why not otherwise.
  bool take(const std::string& given, bool fromPage);
  void enableActions();
  void showState();
  void showMenu(const QPoint& at);
  [[nodiscard]] bool onTextPage() const;
  [[nodiscard]] TJsonPlace place() const;
  [[nodiscard]] bool suits(std::string_view name, const TValue& value) const;
  /// Runs a call, one that may take long beside the windows and with a way to stop. False when stopped.
  bool work(bool large, const QString& caption, const std::function<void()>& call);

  TWindowContext& context_;
  const bool readOnly_;
  TJsonTree tree_;
  std::unique_ptr<TJsonTreeModel> model_;
  TValue result_;
  TTextSearch search_;
  bool textIsOld_ = true;  ///< the tree was changed since the text was made
  bool turningBack_ = false;
  bool updateWaits_ = false;
  QToolBar* bar_ = nullptr;
  std::map<std::string, QAction*> actions_;
  QMenu* kinds_ = nullptr;
  QTabWidget* pages_ = nullptr;
  QSplitter* splitter_ = nullptr;
  TJsonTreeView* view_ = nullptr;
  TBlobPanel* blob_ = nullptr;
  TCodeEditor* text_ = nullptr;
  QLineEdit* find_ = nullptr;
  QLabel* findCount_ = nullptr;
  QLabel* state_ = nullptr;
};

}  // namespace hollowmere
