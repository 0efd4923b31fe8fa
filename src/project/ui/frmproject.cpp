#include "project/ui/frmproject.h"

#include <QAction>
#include <QFileDialog>
#include <QFileInfo>
#include <QLabel>
#include <QRegularExpression>
#include <QShortcut>
#include <QTabWidget>
#include <QToolBar>
#include <QVBoxLayout>

#include "project/edittexts.h"
#include "project/runtexts.h"
#include "project/ui/generalpage.h"
#include "project/ui/listpages.h"
#include "project/ui/mappingpage.h"
#include "project/ui/runpage.h"
#include "settings/ui/frmdbconfig.h"
#include "ui/helptopic.h"
#include "ui/icons.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

constexpr int tickMilliseconds = 200;

QString filesOf() { return TfrmProject::tr("Load projects (*.hmp);;All files (*)"); }

}  // namespace

TfrmProject::TfrmProject(TWindowContext& context, TProject project, QWidget* parent)
    : TMdiChild(parent),
      context_(context),
      editor_(std::move(project)),
      file_(context.cipher, context.files) {
  setWindowIcon(themeIcon("hollowmere-project"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  makeToolBar();
  setHelpTopic(*this, "project");
  makePages();
  fileLabel_ = new QLabel(this);
  fileLabel_->setObjectName(QStringLiteral("lFile"));
  fileLabel_->setTextInteractionFlags(Qt::TextSelectableByMouse);
  fileLabel_->setContentsMargins(6, 0, 6, 4);
  layout->addWidget(fileLabel_);
  tLoadTimer_.setInterval(tickMilliseconds);
  connect(&tLoadTimer_, &QTimer::timeout, this, &TfrmProject::onTick);
  if (!editor_.project().fileName.empty()) noteFile(editor_.project().fileName);
  showCaption();
  onEdited();
}

TfrmProject::~TfrmProject() = default;

QAction* TfrmProject::addAction(QToolBar* bar, const char* name, const QString& caption, const char* icon,
                                const QKeySequence& keys, void (TfrmProject::*slot)()) {
  auto* action = new QAction(themeIcon(icon), caption, this);
  action->setObjectName(QLatin1String(name));
  action->setShortcut(keys);
  action->setShortcutContext(Qt::WidgetWithChildrenShortcut);
  action->setToolTip(keys.isEmpty()
                         ? caption
                         : caption + QStringLiteral(" (%1)").arg(keys.toString(QKeySequence::NativeText)));
  connect(action, &QAction::triggered, this, slot);
  bar->addAction(action);
  QWidget::addAction(action);
  return action;
}

void TfrmProject::makeToolBar() {
  auto* bar = new QToolBar(this);
  bar->setObjectName(QStringLiteral("projectBar"));
  bar->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  addAction(bar, "actSave", text("Save Project"), "document-save", QKeySequence::Save, &TfrmProject::actSave);
  addAction(bar, "actSaveAs", text("Save Project As"), "document-save-as", QKeySequence(tr("Ctrl+Shift+S")),
            &TfrmProject::actSaveAs);
  bar->addSeparator();
  undo_ = addAction(bar, "actUndoChange", tr("Undo"), "edit-undo", QKeySequence::Undo, &TfrmProject::onUndo);
  redo_ = addAction(bar, "actRedoChange", tr("Redo"), "edit-redo", QKeySequence::Redo, &TfrmProject::onRedo);
  bar->addSeparator();
  addAction(bar, "actStart", text("Start Load Operation"), "media-playback-start", QKeySequence(tr("F9")),
            &TfrmProject::actStartExecute);
  addAction(bar, "actStop", text("Stop Load Operation"), "media-playback-stop", QKeySequence(tr("Shift+F9")),
            &TfrmProject::actStopExecute);
  layout()->addWidget(bar);
}

void TfrmProject::makePages() {
  pages_ = new QTabWidget(this);
  pages_->setObjectName(QStringLiteral("pages"));
  pages_->setAccessibleName(tr("Project pages"));
  general_ = new TGeneralPage(editor_, this);
  sources_ = new TDataSourcesPage(context_, editor_, this);
  targets_ = new TDataTargetsPage(editor_, this);
  mapping_ = new TMappingPage(context_, editor_, this);
  runPage_ = new TRunPage(context_, this);
  setHelpTopic(*runPage_, "run");
  setHelpTopic(*mapping_, "mapping");
  pages_->addTab(general_, text("General"));
  pages_->addTab(sources_, text("Data Sources"));
  pages_->addTab(targets_, text("Data Targets"));
  pages_->addTab(mapping_, text("Data Mapping"));
  pages_->addTab(runPage_, text("Run"));
  static_cast<QVBoxLayout*>(layout())->addWidget(pages_, 1);
  connect(general_, &TGeneralPage::edited, this, &TfrmProject::onEdited);
  connect(sources_, &TDataSourcesPage::edited, this, &TfrmProject::onEdited);
  connect(targets_, &TDataTargetsPage::edited, this, &TfrmProject::onEdited);
  connect(mapping_, &TMappingPage::edited, this, &TfrmProject::onEdited);
  connect(general_, &TGeneralPage::refused, this, &TfrmProject::refuse, Qt::QueuedConnection);
  connect(sources_, &TDataSourcesPage::refused, this, &TfrmProject::refuse);
  connect(targets_, &TDataTargetsPage::refused, this, &TfrmProject::refuse);
  connect(mapping_, &TMappingPage::refused, this, &TfrmProject::refuse);
  connect(
      general_, &TGeneralPage::typeChosen, this,
      [this](int side, const QString& type) { changeType(side == 0 ? TSide::Source : TSide::Target, type); },
      Qt::QueuedConnection);
  connect(
      general_, &TGeneralPage::connectionWanted, this,
      [this](int side) { configureConnection(side == 0 ? TSide::Source : TSide::Target); },
      Qt::QueuedConnection);
  connect(runPage_, &TRunPage::startWanted, this, &TfrmProject::actStartExecute);
  connect(runPage_, &TRunPage::stopWanted, this, &TfrmProject::actStopExecute);
  setFocusProxy(pages_);
  for (const auto& [keys, by] : {std::pair(tr("Ctrl+PgDown"), 1), std::pair(tr("Ctrl+PgUp"), -1)})
    connect(new QShortcut(QKeySequence(keys), this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
            &QShortcut::activated, this, [this, step = by] { turnPage(step); });
  // The preview is read when somebody looks at it.
  connect(pages_, &QTabWidget::currentChanged, this, [this](int page) {
    if (pages_->widget(page) == mapping_) mapping_->refresh();
  });
}

void TfrmProject::turnPage(int by) {
  pages_->setCurrentIndex((pages_->currentIndex() + by + pages_->count()) % pages_->count());
  pages_->currentWidget()->setFocus();
}

void TfrmProject::onEdited() {
  undo_->setEnabled(editor_.canUndo());
  redo_->setEnabled(editor_.canRedo());
  setWindowModified(project().changed);
  showCaption();
  Q_EMIT statusChanged();
}

void TfrmProject::refreshPages() {
  general_->refresh();
  sources_->refresh();
  targets_->refresh();
  if (pages_->currentWidget() == mapping_) mapping_->refresh();
  onEdited();
}

void TfrmProject::onUndo() {
  editor_.undo();
  refreshPages();
}

void TfrmProject::onRedo() {
  editor_.redo();
  refreshPages();
}

void TfrmProject::refuse(const QString& message) { context_.prompt.warning(message.toStdString()); }

void TfrmProject::showCaption() {
  setWindowTitle(QString::fromStdString(project().projectName + " :: " + project().fileName) +
                 QStringLiteral("[*]"));
  if (fileLabel_) fileLabel_->setText(text("Project File :: ") + QString::fromStdString(project().fileName));
}

void TfrmProject::noteFile(const std::string& fileName) {
  fileTime_ = QFileInfo(QString::fromStdString(fileName)).lastModified();
}

void TfrmProject::actSave() {
  if (project().fileName.empty())
    actSaveAs();
  else
    saveTo(QString::fromStdString(project().fileName));
}

void TfrmProject::actSaveAs() {
  // A project without a file offers its name as one; what no file name may hold is left out.
  QString offered = QString::fromStdString(project().fileName);
  if (offered.isEmpty())
    offered = QString::fromStdString(project().projectName)
                  .remove(QRegularExpression(QStringLiteral(R"([/\:*?"<>|])"))) +
              QStringLiteral(".hmp");
  QString name = QFileDialog::getSaveFileName(this, text("Save Project As"), offered, filesOf());
  if (name.isEmpty()) return;
  if (QFileInfo(name).suffix().isEmpty()) name += QStringLiteral(".hmp");
  // Each of the two windows would undo what the other one saves.
  if (context_.isOpenElsewhere && context_.isOpenElsewhere(name, *this))
    return context_.prompt.error(
        tr("The project file %1 is open in another window. Close that window first, or choose another name.")
            .arg(name)
            .toStdString());
  saveTo(name);
}

/// Another program may have written the file since.
bool TfrmProject::mayOverwrite(const QString& fileName) {
  if (fileName.toStdString() != project().fileName) return true;
  const QFileInfo now(fileName);
  if (!now.exists() || now.lastModified() == fileTime_) return true;
  return context_.prompt.confirm(
      tr("The file %1 was changed by another program since it was opened. Would you like to replace it?")
          .arg(fileName)
          .toStdString());
}

bool TfrmProject::saveTo(const QString& fileName) {
  if (!mayOverwrite(fileName)) return false;
  TProject copy = project();
  try {
    file_.save(copy, fileName.toStdString());
  } catch (const std::exception& error) {
    context_.prompt.error(error.what());
    return false;
  }
  editor_.markSaved(copy.fileName);
  noteFile(copy.fileName);
  onEdited();
  Q_EMIT saved(fileName);
  return true;
}

void TfrmProject::changeType(TSide side, const QString& dbType) {
  const TProjectSide& now = side == TSide::Source ? project().source : project().target;
  if (now.dbType == dbType.toStdString()) return;
  changeSide(side, {dbType.toStdString(), TObject()});
}

void TfrmProject::changeSide(TSide side, TProjectSide value) {
  const std::string question = editor_.resetQuestion(side);
  const bool reset = !question.empty() && context_.prompt.confirm(question);
  editor_.setSide(side, std::move(value), reset);
  refreshPages();
}

void TfrmProject::configureConnection(TSide side) {
  if (const std::string refusal = editor_.connectionRefusal(side); !refusal.empty())
    return context_.prompt.warning(refusal);
  TProjectSide value = side == TSide::Source ? project().source : project().target;
  if (!chooseConnection(side, value)) return;
  const bool isRecord = value.connection.is(TKind::Object);
  const TValue record = value.connection;
  changeSide(side, std::move(value));
  if (isRecord && context_.offerToKeep) context_.offerToKeep(record.asObject());
}

bool TfrmProject::chooseConnection(TSide side, TProjectSide& value) {
  if (value.dbType == dbtype::jsonFile) {
    const QString now =
        value.connection.is(TKind::Text) ? QString::fromStdString(value.connection.asText()) : QString();
    const QString filter = tr("JSON files (*.json *.jsonl);;All files (*)");
    const QString name = side == TSide::Source
                             ? QFileDialog::getOpenFileName(this, tr("Source JSON File"), now, filter)
                             : QFileDialog::getSaveFileName(this, tr("Target JSON File"), now, filter);
    if (name.isEmpty()) return false;
    value.connection = name.toStdString();
    return true;
  }
  TfrmDBConfig dialog(context_, this);
  dialog.loadAllowedDataSourceTypes({value.dbType});
  if (context_.keptConnections) dialog.offerKept(context_.keptConnections().records());
  if (value.connection.is(TKind::Object) && !value.connection.asObject().empty())
    dialog.setConnection(value.connection.asObject());
  if (dialog.exec() != QDialog::Accepted || !dialog.connection()) return false;
  value.connection = *dialog.connection();
  return true;
}

void TfrmProject::actStartExecute() {
  if (run_ && run_->busy()) return;
  runPage_->clear();
  runPage_->setFiles(project().logFile, project().discFile);
  pages_->setCurrentWidget(runPage_);
  TRunServices services{context_.stores,
                        context_.prompt,
                        context_.mainThread,
                        context_.clock,
                        context_.dates,
                        static_cast<std::size_t>(context_.settings.bufLen),
                        [](const std::function<void()>& call, TStopFlag& stop) {
                          runWithWaitDialog(tr("Connecting and counting..."), call, stop);
                        },
                        [this](const std::string& lines) { runPage_->addLog(lines); }};
  run_ = std::make_unique<TRunControl>(project(), std::move(services), false);
  if (run_->start()) tLoadTimer_.start();
  runPage_->showRun(*run_);
  Q_EMIT statusChanged();
}

void TfrmProject::actStopExecute() {
  if (run_) run_->stop();
}

void TfrmProject::onTick() {
  if (!run_ || !run_->tick()) tLoadTimer_.stop();
  if (run_) runPage_->showRun(*run_);
  Q_EMIT statusChanged();
}

bool TfrmProject::mayClose() {
  if (const std::string refusal = closeRefusal(run_.get()); !refusal.empty()) {
    context_.prompt.error(refusal);
    return false;
  }
  if (!project().changed) return true;
  switch (context_.prompt.ask(TPromptKind::Confirmation, runtexts::saveChanges, TButtons::YesNoCancel)) {
    case TAnswer::Yes: actSave(); return !project().changed;
    case TAnswer::No: return true;
    default: return false;
  }
}

QString TfrmProject::exitRefusal() const { return text(hollowmere::exitRefusal({run_.get()})); }

QString TfrmProject::statusText() const {
  if (!run_) return text(runtexts::ready);
  return text(run_->status()) + QStringLiteral(" – ") + runPage_->status();
}

}  // namespace hollowmere
