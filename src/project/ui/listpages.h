#pragma once

#include <QTableWidget>
#include <QWidget>
#include <optional>

#include "project/projecteditor.h"
#include "ui/windowcontext.h"

class QHBoxLayout;
class QPushButton;

namespace hollowmere {

/// A page that is one grid of named rows with buttons above it.
class TListPage : public QWidget {
  Q_OBJECT

 public:
  /// Shows the project as it is now.
  virtual void refresh() = 0;

 Q_SIGNALS:
  void edited();
  void refused(const QString& message);

 protected:
  TListPage(const char* gridName, const QString& caption, const QStringList& columns, QWidget* parent);

  QPushButton* addButton(const char* name, const QString& caption, const char* icon);
  /// Shows what became of a change: the project as it is, or the message of a refusal.
  void finish(const std::string& refusal);
  /// The same, once the editor of a cell has closed: a message's dialog would let it see events.
  void finishLater(const std::string& refusal);
  /// As finish(), and the new last row is the current one.
  void finishAdding(const std::string& refusal);
  /// A cell was edited by the user.
  virtual void onChanged(QTableWidgetItem* item) = 0;

  void beginFill(std::size_t rows);
  void setCell(int row, int column, const QString& text, bool editable = true);
  void endFill();
  /// The current row; nothing without one.
  [[nodiscard]] std::optional<std::size_t> currentRow() const;

  QTableWidget* grid_;

 private:
  QHBoxLayout* buttons_;
  int rowBefore_ = 0;
  int columnBefore_ = 0;
  bool filling_ = false;
};

/// The page "Data Sources": names and queries.
class TDataSourcesPage : public TListPage {
  Q_OBJECT

 public:
  TDataSourcesPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent);
  void refresh() override;

 private:
  void bEditDSClick();
  std::optional<TValue> askForDefinition(std::size_t row);
  void bClearDSClick();
  void onChanged(QTableWidgetItem* item) override;

  TWindowContext& context_;
  TProjectEditor& editor_;
};

/// The page "Data Targets": names and the objects that receive the data.
class TDataTargetsPage : public TListPage {
  Q_OBJECT

 public:
  TDataTargetsPage(TProjectEditor& editor, QWidget* parent);
  void refresh() override;

 private:
  void onChanged(QTableWidgetItem* item) override;

  TProjectEditor& editor_;
};

}  // namespace hollowmere
