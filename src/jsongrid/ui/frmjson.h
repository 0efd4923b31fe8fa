#pragma once

#include <QDialog>
#include <memory>
#include <optional>

#include "jsongrid/documentlist.h"
#include "jsongrid/gridview.h"
#include "jsongrid/ui/jsonwindow.h"
#include "ui/windowcontext.h"

class QAction;
class QLabel;
class QLineEdit;
class QMenu;
class QMenuBar;
class QModelIndex;
class QSplitter;
class QTableView;
class QTabWidget;
class QToolBar;

namespace hollowmere {

class TBlobPanel;
class TCodeEditor;
class TGridActions;
class TGridModel;

struct TFileDocuments {
  TList documents;
  TDocumentForm form = TDocumentForm::Lines;
};

/// Reads the documents of a file on a thread, with a dialog to stop it. Nothing when they cannot be read,
/// which is told, or the user has stopped it.
std::optional<TFileDocuments> readJsonFile(TWindowContext& context, const QString& fileName);

/// The grid editor for a list of documents. Modal; who opens it takes the edited rows after OK.
class TfrmJSON : public QDialog {
  Q_OBJECT

 public:
  TfrmJSON(TWindowContext& context, TList documents, const TJsonWindowOptions& options, QWidget* parent);
  ~TfrmJSON() override;

  /// Whether anything was edited, or another file opened.
  [[nodiscard]] bool changed() const { return replaced_ || grid_.changed(); }
  /// The rows as they are now; the window has none afterwards.
  TList takeDocuments();
  /// Shows the documents of a file instead. What is wrong with it is told, and nothing changes then.
  bool openFile(const QString& fileName);

  void accept() override;
  void reject() override;

 protected:
  void showEvent(QShowEvent* event) override;
  void done(int result) override;

 private:
  using THandler = void (TfrmJSON::*)();

  void makeTable();
  void makePane();
  void makeActions();
  void makeMenus(QMenuBar& menus);
  QToolBar* makeToolBar();
  QLayout* makeFindRow();
  QLayout* makePageRow();
  QAction* makeAction(const char* name, const QString& caption, const char* icon, const QKeySequence& keys,
                      THandler handler);
  void makeGridActions();
  void makeEditActions();

  [[nodiscard]] std::optional<TCellPlace> currentPlace() const;
  [[nodiscard]] std::vector<TCellPlace> selectedCells() const;
  [[nodiscard]] std::vector<std::size_t> selectedRows() const;
  [[nodiscard]] std::unique_ptr<TGridTable> allRows() const;
  [[nodiscard]] std::unique_ptr<TGridTable> selectedPart() const;
  void showCell(TCellPlace place);
  void afterRowsChanged(std::optional<TCellPlace> place);
  void turnPage(void (TGridView::*turn)());
  void fitColumns();
  void updateActions();
  void updatePages();
  bool showRefusal();
  void refuse(const std::string& message);

  void onCurrentChanged();
  void onHeaderClicked(int column);
  void onDoubleClicked(const QModelIndex& index);
  void showValue();
  bool commitValue();
  void onBlobEdited();

  void openFileClick();
  void addRow();
  void deleteRow();
  void clearData();
  void addAttribute();
  void undo();
  void viewRow();
  void viewCell(TCellPlace place);
  void format();
  void saveAsNewCollection();
  void find(bool backwards);
  void findNext() { find(false); }
  void findPrevious() { find(true); }
  void showFind();

  TWindowContext& context_;
  TJsonWindowOptions options_;
  TJsonGrid grid_;
  TGridView view_;
  TGridModel* model_;
  TGridActions* actions_ = nullptr;
  bool replaced_ = false;
  bool placed_ = false;

  QSplitter* splitter_;
  QTableView* table_;
  QTabWidget* pane_ = nullptr;
  TCodeEditor* value_ = nullptr;
  TBlobPanel* blob_ = nullptr;
  std::optional<TCellPlace> valuePlace_;  ///< of the cell that the pane shows
  int sortedColumn_ = -1;
  Qt::SortOrder sortOrder_ = Qt::AscendingOrder;
  QLineEdit* find_ = nullptr;
  QLabel* pageText_ = nullptr;

  std::vector<QAction*> editActions_;  ///< those that change something
  std::vector<QAction*> cellActions_;  ///< those that need a cell
  std::vector<QAction*> backActions_, forwardActions_;
  QAction *open_ = nullptr, *addRow_ = nullptr, *deleteRow_ = nullptr, *clear_ = nullptr,
          *addAttribute_ = nullptr, *undo_ = nullptr, *viewRow_ = nullptr, *format_ = nullptr,
          *newCollection_ = nullptr;
};

}  // namespace hollowmere
