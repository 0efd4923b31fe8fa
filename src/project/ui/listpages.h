#pragma once

#include <QTableWidget>
#include <QWidget>

#include "project/projecteditor.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// The page "Data Sources": names and queries.
class TDataSourcesPage : public QWidget {
  Q_OBJECT

 public:
  TDataSourcesPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent);
  void refresh();

 Q_SIGNALS:
  void edited();
  void refused(const QString& message);

 private:
  void bAddDSClick();
  void bEditDSClick();
  void bDelDSClick();
  void bClearDSClick();
  void onChanged(QTableWidgetItem* item);

  TWindowContext& context_;
  TProjectEditor& editor_;
  QTableWidget* grid_;
  bool filling_ = false;
};

/// The page "Data Targets": names and the objects that receive the data.
class TDataTargetsPage : public QWidget {
  Q_OBJECT

 public:
  TDataTargetsPage(TProjectEditor& editor, QWidget* parent);
  void refresh();

 Q_SIGNALS:
  void edited();
  void refused(const QString& message);

 private:
  void bAddTargetClick();
  void bDelTargetClick();
  void onChanged(QTableWidgetItem* item);

  TProjectEditor& editor_;
  QTableWidget* grid_;
  bool filling_ = false;
};

}  // namespace hollowmere
