#pragma once

#include <QWidget>

#include "project/projecteditor.h"
#include "ui/propertygrid.h"

namespace hollowmere {

/// The page "General": the project's settings and its two connections.
class TGeneralPage : public QWidget {
  Q_OBJECT

 public:
  TGeneralPage(TProjectEditor& editor, QWidget* parent);

  /// Shows the project as it is now.
  void refresh();

 Q_SIGNALS:
  void edited();
  void refused(const QString& message);
  void typeChosen(int side, const QString& dbType);
  void connectionWanted(int side);

 private:
  void onEdited(const QString& key, const QString& text);

  TProjectEditor& editor_;
  TPropertyGrid* grid_;
};

}  // namespace hollowmere
