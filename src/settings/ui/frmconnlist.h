#pragma once

#include "settings/connectionedit.h"
#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QAction;
class QBoxLayout;
class QLineEdit;
class QModelIndex;
class QPushButton;
class QTableView;

namespace hollowmere {

class TConnectionFilter;
class TConnectionModel;

/// The list of saved connections. Changes stay in the window until it closes; then the list is saved.
class TfrmConnList : public TMdiChild {
  Q_OBJECT

 public:
  /// Loads the list; one that cannot be loaded is reported.
  explicit TfrmConnList(TWindowContext& context, QWidget* parent = nullptr);

  /// The list as the window shows it: while the window is open, this is the list of the program.
  [[nodiscard]] const TConnectionList& connections() const { return edit_.list(); }
  /// Asks whether a project's connection is to be kept, and keeps it.
  bool offerToKeep(const ConnectionConfig& record);

  bool mayClose() override;
  [[nodiscard]] QString statusText() const override;

 Q_SIGNALS:
  void openConnection(const hollowmere::ConnectionConfig& connection);

 protected:
  void showEvent(QShowEvent* event) override;

 private:
  using THandler = void (TfrmConnList::*)();

  void makeTable();
  QBoxLayout* makeButtons();
  QBoxLayout* makeFindRow();
  QAction* makeAction(const char* name, const QString& caption, const char* icon,
                      const QList<QKeySequence>& keys, THandler handler);
  QPushButton* makeButton(const char* name, const QString& caption, const char* icon, THandler handler);
  QWidget& frame();
  [[nodiscard]] int currentPlace() const;
  void focusPlace(int place);
  void refresh(int place);
  void widenColumns();
  void updateActions();
  void onFind(const QString& text);
  void bAddConnClick();
  void bEditConnClick();
  void bRemoveConnClick();
  void bOpenConnClick();
  void bImportClick();
  void bExportClick();
  void importFile(const QString& fileName);
  void exportFile(const QString& fileName, const std::optional<std::string>& passPhrase);

  TWindowContext& context_;
  TConnectionEdit edit_;
  TConnectionModel* model_;
  TConnectionFilter* filter_;
  QTableView* table_;
  QLineEdit* find_ = nullptr;
  std::vector<QAction*> rowActions_;      ///< those that need a row
  std::vector<QPushButton*> rowButtons_;  ///< the same as buttons
  QPushButton* bExport_ = nullptr;
  bool placed_ = false;
};

}  // namespace hollowmere
