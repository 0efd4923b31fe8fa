#pragma once

#include <QPointer>
#include <QTimer>
#include <memory>

#include "project/projecteditor.h"
#include "project/projectfile.h"
#include "project/runcontrol.h"
#include "ui/mdichild.h"
#include "ui/windowcontext.h"

class QLabel;
class QTabWidget;

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

  bool save();
  bool saveAs();
  void startLoad();
  void stopLoad();

 Q_SIGNALS:
  void saved(const QString& fileName);

 private:
  void makeToolBar();
  void onEdited();
  void refuse(const std::string& message);
  bool saveTo(const QString& fileName);
  bool overwritesForeignChange(const QString& fileName);
  void rememberFile();
  void configureConnection(TSide side);
  void changeType(TSide side, const QString& dbType);
  void setSide(TSide side, TProjectSide value);
  void onTick();
  void onUndo();
  void onRedo();

  TWindowContext& context_;
  TProjectEditor editor_;
  TProjectFile file_;
  std::unique_ptr<TRunControl> run_;
  QTimer tLoadTimer_;
  QTabWidget* pages_;
  QLabel* fileLabel_;
  TGeneralPage* general_;
  TDataSourcesPage* sources_;
  TDataTargetsPage* targets_;
  TMappingPage* mapping_;
  TRunPage* runPage_;
  QDateTime fileTime_;  ///< of the file when it was read or written last
};

}  // namespace hollowmere
