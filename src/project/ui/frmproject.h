#pragma once

#include <QDateTime>
#include <QTimer>
#include <memory>

#include "project/projecteditor.h"
#include "project/projectfile.h"
#include "project/runcontrol.h"
#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QAction;
class QLabel;
class QTabWidget;
class QToolBar;

namespace hollowmere {

class TDataSourcesPage;
class TDataTargetsPage;
class TGeneralPage;
class TMappingPage;
class TRunPage;

/// The window of one project: settings, data sources, data targets, mapping, and the run of its load.
class TfrmProject : public TMdiChild {
  Q_OBJECT

 public:
  TfrmProject(TWindowContext& context, TProject project, QWidget* parent = nullptr);
  ~TfrmProject() override;

  [[nodiscard]] const TProject& project() const { return editor_.project(); }
  [[nodiscard]] const TRunControl* run() const { return run_.get(); }

  bool mayClose() override;
  [[nodiscard]] QString exitRefusal() const override;
  [[nodiscard]] QString statusText() const override;

  // The actions of the window; each says what is wrong through the prompt.
  void actSave();
  void actSaveAs();
  void actStartExecute();
  void actStopExecute();

 Q_SIGNALS:
  /// The project was written to this file.
  void saved(const QString& fileName);

 private:
  QAction* addAction(QToolBar* bar, const char* name, const QString& caption, const char* icon,
                     const QKeySequence& keys, void (TfrmProject::*slot)());
  void makeToolBar();
  void makePages();
  void turnPage(int by);
  void onEdited();
  void onUndo();
  void onRedo();
  void refreshPages();
  void refuse(const QString& message);
  bool saveTo(const QString& fileName);
  bool mayOverwrite(const QString& fileName);
  void noteFile(const std::string& fileName);
  void showCaption();
  void configureConnection(TSide side);
  void changeType(TSide side, const QString& dbType);
  void changeSide(TSide side, TProjectSide value);
  [[nodiscard]] bool chooseConnection(TSide side, TProjectSide& value);
  void onTick();

  TWindowContext& context_;
  TProjectEditor editor_;
  TProjectFile file_;
  std::unique_ptr<TRunControl> run_;
  QTimer tLoadTimer_;
  QTabWidget* pages_ = nullptr;
  QLabel* fileLabel_ = nullptr;
  QAction* undo_ = nullptr;
  QAction* redo_ = nullptr;
  TGeneralPage* general_ = nullptr;
  TDataSourcesPage* sources_ = nullptr;
  TDataTargetsPage* targets_ = nullptr;
  TMappingPage* mapping_ = nullptr;
  TRunPage* runPage_ = nullptr;
  QDateTime fileTime_;  ///< of the file when it was read or written last
};

}  // namespace hollowmere
