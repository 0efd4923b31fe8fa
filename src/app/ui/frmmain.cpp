#include "app/ui/frmmain.h"

#include <QAction>
#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QMessageBox>
#include <QMimeData>
#include <QPainter>
#include <QSettings>
#include <QStatusBar>
#include <QTabBar>
#include <QToolBar>
#include <QVBoxLayout>

#include "app/ui/editactions.h"
#include "app/ui/frmhelp.h"
#include "app/ui/startup.h"
#include "jsondoc/ui/viewjson.h"
#include "jsongrid/documentlist.h"
#include "jsongrid/ui/jsonwindow.h"
#include "project/recentprojects.h"
#include "project/ui/frmproject.h"
#include "settings/ui/frmconnlist.h"
#include "settings/ui/frmoption.h"
#include "ui/helptopic.h"
#include "ui/icons.h"
#include "ui/placement.h"
#include "ui/printing.h"

namespace hollowmere {

namespace {

const QString& placementGroup() {
  static const QString group = QStringLiteral("Main");
  return group;
}

/// The area for the windows. While there are none it says how to get one.
class TWindowArea : public QMdiArea {
 public:
  TWindowArea(const QString& hint, QWidget* parent) : QMdiArea(parent), hint_(hint) {}

 protected:
  void paintEvent(QPaintEvent* event) override {
    QMdiArea::paintEvent(event);
    if (!subWindowList().isEmpty()) return;
    QPainter painter(viewport());
    painter.setPen(background().color().lightness() < 128 ? Qt::white : Qt::black);
    painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, hint_);
  }

 private:
  QString hint_;
};

TMdiChild* childOf(const QMdiSubWindow* window) {
  return window ? qobject_cast<TMdiChild*>(window->widget()) : nullptr;
}

/// Whether a file holds JSON text. A project file is enciphered: none begins like that.
bool beginsAsJson(const QString& fileName) {
  QFile file(fileName);
  if (!QFileInfo(fileName).isFile() || !file.open(QIODevice::ReadOnly)) return false;
  QByteArray head = file.read(1024).trimmed();
  if (head.startsWith("\xEF\xBB\xBF")) head = head.mid(3).trimmed();
  return head.startsWith('{') || head.startsWith('[');
}

/// A file too large to be looked at twice counts as several.
bool holdsOneDocument(const QString& fileName) {
  constexpr qint64 mostBytes = 16 * 1024 * 1024;
  if (QFileInfo(fileName).size() > mostBytes) return false;
  try {
    TDocumentForm form = TDocumentForm::List;
    static_cast<void>(readDocuments(fileName.toStdString(), nullptr, &form));
    return form == TDocumentForm::One;
  } catch (const std::exception&) {
    return false;
  }
}

/// One name for one file, also where links lead to it.
QString wholeName(const QString& fileName) {
  const QFileInfo file(fileName);
  return file.exists() ? file.canonicalFilePath() : file.absoluteFilePath();
}

}  // namespace

TfrmMain::TfrmMain(TWindowContext& context, int noticesAfter)
    : context_(context),
      addresses_(loadWebAddresses(context.store)),
      startUp_(new TStartUp(context, addresses_, this)),
      noticesAfter_(noticesAfter) {
  setObjectName(QStringLiteral("TfrmMain"));
  setWindowTitle(QStringLiteral("Hollowmere"));
  setWindowIcon(themeIcon("hollowmere"));
  QGuiApplication::setWindowIcon(windowIcon());
  setAcceptDrops(true);
  auto* centre = new QWidget(this);
  auto* layout = new QVBoxLayout(centre);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  tabs_ = new QTabBar(centre);
  tabs_->setObjectName(QStringLiteral("windowTabs"));
  tabs_->setAccessibleName(tr("Open windows"));
  tabs_->setDocumentMode(true);
  tabs_->setTabsClosable(true);
  tabs_->setExpanding(false);
  tabs_->setElideMode(Qt::ElideMiddle);
  area_ = new TWindowArea(
      tr("Begin with a new project, open one, or drop a project or a JSON file here.\nF1 shows the help."),
      centre);
  area_->setObjectName(QStringLiteral("area"));
  layout->addWidget(tabs_);
  layout->addWidget(area_, 1);
  setCentralWidget(centre);
  toolBar_ = addToolBar(tr("Main"));
  toolBar_->setObjectName(QStringLiteral("mainBar"));
  toolBar_->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  makeFileMenu();
  makeEditMenu();
  makeWindowMenu();
  makeHelpMenu();
  connect(area_, &QMdiArea::subWindowActivated, this, &TfrmMain::onActivated);
  connect(tabs_, &QTabBar::tabBarClicked, this, [this](int tab) {
    if (tab >= 0 && tab < area_->subWindowList().size())
      area_->setActiveSubWindow(area_->subWindowList()[tab]);
  });
  connect(tabs_, &QTabBar::tabCloseRequested, this,
          [this](int tab) { area_->subWindowList()[tab]->close(); });
  resize(fontMetrics().averageCharWidth() * 150, fontMetrics().height() * 45);
  restorePlacement(context_.store, placementGroup(), *this);
  context_.offerToKeep = [this](const ConnectionConfig& record) { offerToKeep(record); };
  context_.keptConnections = [this] { return keptConnections(); };
  context_.isOpenElsewhere = [this](const QString& fileName, const QWidget& except) {
    return findProject(fileName, &except) != nullptr;
  };
  qApp->installEventFilter(this);
  statusBar()->showMessage(text("Ready"));
  updateTabs();
}

TfrmMain::~TfrmMain() {
  context_.offerToKeep = {};
  context_.keptConnections = {};
  context_.isOpenElsewhere = {};
  // What is left in the area tells of its end while half of this window is gone already.
  area_->disconnect(this);
  for (TMdiChild* child : childWindows()) child->disconnect(this);
}

QAction* TfrmMain::makeAction(const char* name, const QString& caption, const char* icon,
                              const QKeySequence& keys) {
  auto* action = new QAction(themeIcon(icon), caption, this);
  action->setObjectName(QLatin1String(name));
  action->setShortcut(keys);
  return action;
}

void TfrmMain::makeFileMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&File"));
  QAction* create =
      makeAction("actNewProject", text("New Project"), "document-new", QKeySequence(tr("Ctrl+N")));
  QAction* open =
      makeAction("actOpenProject", text("Open Project"), "document-open", QKeySequence(tr("Ctrl+O")));
  QAction* document = makeAction("actOpenDocument", tr("Open JSON Document"), "", {});
  QAction* migrate = makeAction("actOraToJSON", text("Create Migration Project from Oracle Schema"), "", {});
  QAction* list = makeAction("actConnList", text("Configure Database Connections"), "network-server", {});
  // The same keys twice would do nothing at all: opening keeps Ctrl+O, the options have Shift besides.
  QAction* option =
      makeAction("actOption", text("Program Options"), "configure", QKeySequence(tr("Ctrl+Shift+O")));
  QAction* setup = makeAction("actPageSetup", text("Page Setup"), "document-page-setup", {});
  QAction* exit = makeAction("actExit", text("Exit"), "application-exit", QKeySequence(tr("Ctrl+Q")));
  exit->setMenuRole(QAction::QuitRole);
  recent_ = new QMenu(tr("&Recent Projects"), this);
  recent_->setObjectName(QStringLiteral("recentMenu"));
  menu->addAction(create);
  menu->addAction(open);
  menu->addMenu(recent_);
  menu->addAction(migrate);
  menu->addSeparator();
  menu->addAction(document);
  menu->addSeparator();
  menu->addAction(list);
  menu->addAction(option);
  menu->addSeparator();
  menu->addAction(setup);
  menu->addSeparator();
  menu->addAction(exit);
  for (QAction* action : {create, open, list, option}) toolBar_->addAction(action);
  connect(create, &QAction::triggered, this, &TfrmMain::newProject);
  connect(open, &QAction::triggered, this, &TfrmMain::chooseProject);
  connect(document, &QAction::triggered, this, &TfrmMain::chooseDocument);
  connect(migrate, &QAction::triggered, this, &TfrmMain::openMigration);
  connect(list, &QAction::triggered, this, &TfrmMain::openConnectionList);
  connect(option, &QAction::triggered, this, &TfrmMain::showOptions);
  connect(setup, &QAction::triggered, this, [this] { pageSetup(context_, this); });
  connect(exit, &QAction::triggered, this, &TfrmMain::close);
  connect(recent_, &QMenu::aboutToShow, this, &TfrmMain::fillRecent);
}

void TfrmMain::makeEditMenu() { new TEditActions(menuBar()->addMenu(tr("&Edit"))); }

void TfrmMain::makeWindowMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Window"));
  QAction* cascade = makeAction("actCascade", text("&Cascade"), "", {});
  QAction* arrange = makeAction("actArrange", text("&Arrange"), "", {});
  QAction* next = makeAction("actNextWindow", tr("&Next"), "go-next", QKeySequence::NextChild);
  QAction* previous =
      makeAction("actPreviousWindow", tr("&Previous"), "go-previous", QKeySequence::PreviousChild);
  QAction* closeIt = makeAction("actCloseWindow", tr("C&lose"), "", QKeySequence::Close);
  for (QAction* action : {cascade, arrange, next, previous, closeIt}) menu->addAction(action);
  connect(cascade, &QAction::triggered, area_, &QMdiArea::cascadeSubWindows);
  connect(arrange, &QAction::triggered, area_, &QMdiArea::tileSubWindows);
  connect(next, &QAction::triggered, area_, &QMdiArea::activateNextSubWindow);
  connect(previous, &QAction::triggered, area_, &QMdiArea::activatePreviousSubWindow);
  connect(closeIt, &QAction::triggered, area_, &QMdiArea::closeActiveSubWindow);
}

void TfrmMain::makeHelpMenu() {
  QMenu* menu = menuBar()->addMenu(tr("&Help"));
  QAction* help = makeAction("actHelp", text("Help"), "help-contents", QKeySequence(tr("F1")));
  QAction* support = makeAction("actTechSupport", text("Technical Support"), "", {});
  QAction* product = makeAction("actProdInfo", text("Product Information"), "", {});
  QAction* about = makeAction("actAbout", text("About"), "help-about", {});
  about->setMenuRole(QAction::AboutRole);
  menu->addAction(help);
  menu->addSeparator();
  menu->addAction(support);
  menu->addAction(product);
  menu->addSeparator();
  menu->addAction(about);
  connect(help, &QAction::triggered, this, [this] { showHelp(currentTopic()); });
  connect(support, &QAction::triggered, this, &TfrmMain::openSupport);
  connect(product, &QAction::triggered, this,
          [this] { openAddress(addresses_.product, "product information", "product"); });
  connect(about, &QAction::triggered, this, &TfrmMain::showAbout);
}

QList<TMdiChild*> TfrmMain::childWindows() const {
  QList<TMdiChild*> windows;
  for (const QMdiSubWindow* window : area_->subWindowList())
    if (TMdiChild* child = childOf(window)) windows << child;
  return windows;
}

void TfrmMain::showChild(TMdiChild* child) {
  child->setObjectName(QStringLiteral("frm%1").arg(++windowNumber_));
  child->setAttribute(Qt::WA_DeleteOnClose);
  const bool first = area_->subWindowList().isEmpty();
  QMdiSubWindow* window = area_->addSubWindow(child);
  window->setWindowIcon(child->windowIcon());
  // Its keys are those of the menu "Window": given twice, they would do nothing.
  for (QAction* action : window->systemMenu()->actions()) action->setShortcuts({});
  // One window alone has no use for a smaller frame.
  const bool maximised = first || (area_->activeSubWindow() && area_->activeSubWindow()->isMaximized());
  connect(child, &QWidget::windowTitleChanged, this, &TfrmMain::updateTabs);
  connect(child, &TMdiChild::statusChanged, this, &TfrmMain::showStatus);
  connect(window, &QObject::destroyed, this, &TfrmMain::updateTabs, Qt::QueuedConnection);
  maximised ? window->showMaximized() : window->show();
  area_->setActiveSubWindow(window);
  updateTabs();
}

void TfrmMain::updateTabs() {
  const QSignalBlocker quiet(tabs_);
  const auto windows = area_->subWindowList();
  while (tabs_->count() > windows.size()) tabs_->removeTab(tabs_->count() - 1);
  while (tabs_->count() < windows.size()) tabs_->addTab(QString());
  for (int tab = 0; tab < windows.size(); ++tab) {
    QString caption = windows[tab]->windowTitle();
    caption.replace(QStringLiteral("[*]"),
                    windows[tab]->isWindowModified() ? QStringLiteral("*") : QString());
    tabs_->setTabText(tab, caption.replace(QLatin1Char('&'), QStringLiteral("&&")));
    tabs_->setTabToolTip(tab, windows[tab]->windowTitle().remove(QStringLiteral("[*]")));
    if (windows[tab] == area_->activeSubWindow()) tabs_->setCurrentIndex(tab);
  }
  tabs_->setVisible(!windows.isEmpty());
  showStatus();
}

void TfrmMain::onActivated(QMdiSubWindow* /*window*/) { updateTabs(); }

void TfrmMain::showStatus() {
  const TMdiChild* child = childOf(area_->activeSubWindow());
  const QString status = child ? child->statusText() : QString();
  statusBar()->showMessage(status.isEmpty() ? text("Ready") : status);
}

TfrmProject* TfrmMain::findProject(const QString& fileName, const QWidget* except) const {
  const QString wanted = wholeName(fileName);
  for (TMdiChild* child : childWindows()) {
    auto* project = qobject_cast<TfrmProject*>(child);
    if (!project || project == except || project->project().fileName.empty()) continue;
    const QString shown = wholeName(QString::fromStdString(project->project().fileName));
    if (shown.compare(wanted, Qt::CaseInsensitive) == 0) return project;
  }
  return nullptr;
}

TfrmProject* TfrmMain::showProject(TProject project) {
  auto* window = new TfrmProject(context_, std::move(project));
  connect(window, &TfrmProject::saved, this, &TfrmMain::rememberRecent);
  showChild(window);
  return window;
}

TfrmProject* TfrmMain::openProject(const QString& fileName) {
  if (TfrmProject* open = findProject(fileName)) {
    for (QMdiSubWindow* window : area_->subWindowList())
      if (window->widget() == open) area_->setActiveSubWindow(window);
    return open;
  }
  QApplication::setOverrideCursor(Qt::WaitCursor);
  std::string fault;
  TProject project;
  try {
    project = TProjectFile(context_.cipher, context_.files).open(fileName.toStdString());
  } catch (const std::exception& error) {
    fault = error.what();
  }
  QApplication::restoreOverrideCursor();
  if (!fault.empty()) {
    context_.prompt.error(fault);
    return nullptr;
  }
  rememberRecent(fileName);
  return showProject(std::move(project));
}

TfrmProject* TfrmMain::newProject() {
  return showProject(hollowmere::newProject(context_.settings, context_.folder));
}

void TfrmMain::chooseProject() {
  const QString name = QFileDialog::getOpenFileName(this, text("Open Project"), QString(),
                                                    tr("Load projects (*.hmp);;All files (*)"));
  if (!name.isEmpty()) openProject(name);
}

void TfrmMain::chooseDocument() {
  const QString name = QFileDialog::getOpenFileName(this, tr("Open JSON Document"), QString(),
                                                    tr("JSON documents (*.json *.jsonl);;All files (*)"));
  if (!name.isEmpty()) openDocument(name);
}

/// One document in the viewer; several, and what is none, in the grid, which tells what is wrong.
void TfrmMain::openDocument(const QString& fileName) {
  if (holdsOneDocument(fileName))
    viewJsonFile(context_, this, fileName);
  else
    editJsonFile(context_, this, fileName);
}

void TfrmMain::openFile(const QString& fileName) {
  if (beginsAsJson(fileName))
    openDocument(fileName);
  else
    openProject(fileName);
}

void TfrmMain::fillRecent() {
  recent_->clear();
  try {
    for (const std::string& file :
         TRecentProjects(context_.folder.recentProjectsFile(), context_.files).menu()) {
      const QString name = QString::fromStdString(file);
      QAction* action =
          recent_->addAction(themeIcon("document-open"), QString(name).replace('&', QLatin1String("&&")));
      action->setToolTip(text("Open project file ") + name);
      connect(action, &QAction::triggered, this, [this, name] { openProject(name); });
    }
  } catch (const TFileError& error) {
    statusBar()->showMessage(QString::fromUtf8(error.what()));
  }
  if (recent_->isEmpty()) recent_->addAction(tr("No projects yet"))->setEnabled(false);
}

void TfrmMain::rememberRecent(const QString& fileName) {
  try {
    TRecentProjects(context_.folder.recentProjectsFile(), context_.files)
        .add(QFileInfo(fileName).absoluteFilePath().toStdString());
  } catch (const TFileError& error) {
    statusBar()->showMessage(QString::fromUtf8(error.what()));
  }
}

void TfrmMain::openConnectionList() {
  if (TfrmConnList* open = connectionWindow()) {
    area_->setActiveSubWindow(qobject_cast<QMdiSubWindow*>(open->parentWidget()));
    return;
  }
  auto* list = new TfrmConnList(context_);
  connect(list, &TfrmConnList::openConnection, this, &TfrmMain::openDBWindow);
  showChild(list);
}

TfrmConnList* TfrmMain::connectionWindow() const {
  for (TMdiChild* child : childWindows())
    if (auto* list = qobject_cast<TfrmConnList*>(child)) return list;
  return nullptr;
}

/// While its window is open, the list is there and not in the file. One that cannot be loaded is no reason
/// to disturb who only wants to choose from it.
TConnectionList TfrmMain::keptConnections() const {
  if (const TfrmConnList* open = connectionWindow()) return open->connections();
  try {
    return context_.connectionFile().load();
  } catch (const TConnectionListError&) {
    return {};
  }
}

/// See above for where the list is.
void TfrmMain::offerToKeep(const ConnectionConfig& record) {
  if (TfrmConnList* open = connectionWindow()) {
    open->offerToKeep(record);
    return;
  }
  try {
    const TConnectionListFile file = context_.connectionFile();
    TConnectionList list = file.load();
    hollowmere::offerToKeep(list, file, record, context_.prompt);
  } catch (const TConnectionListError& error) {
    context_.prompt.error(error.what());
  }
}

TBrowserWindow* TfrmMain::openDBWindow(const ConnectionConfig& connection) {
  const std::string type = dbTypeOf(connection);
  const TBrowserFactory* factory = context_.browsers.find(type);
  if (!factory) {
    const QString name = type.empty() ? tr("this type of") : QString::fromStdString(type);
    inform(
        tr("There is no browser window for %1 databases in this version yet. Connections of this type can be "
           "used in load projects where the store is supported.")
            .arg(name));
    return nullptr;
  }
  TBrowserWindow* window = nullptr;
  std::string fault;
  QApplication::setOverrideCursor(Qt::WaitCursor);
  try {
    window = (*factory)({context_, connection, TBrowserMode::Child}, nullptr);
  } catch (const std::exception& error) {
    fault = error.what();
  }
  QApplication::restoreOverrideCursor();
  if (!window) {
    context_.prompt.error(fault);
    return nullptr;
  }
  window->setWindowTitle(QString::fromStdString(browserCaption(connection)));
  showChild(window);
  return window;
}

void TfrmMain::openMigration() {
  inform(context_.stores.find(dbtype::oracle)
             ? tr("This build has no assistant for migration projects yet.")
             : tr("This build has no Oracle connector: a migration project cannot be created from an Oracle "
                  "schema."));
}

void TfrmMain::inform(const QString& message) {
  context_.prompt.ask(TPromptKind::Information, message.toStdString(), TButtons::Ok);
}

/// The page of what has the focus, else of the child window in front.
QString TfrmMain::currentTopic() const {
  const QWidget* focused = QApplication::focusWidget();
  const TMdiChild* child = childOf(area_->activeSubWindow());
  return helpTopicOf(child && !child->isAncestorOf(focused) ? child : focused);
}

void TfrmMain::showHelp(const QString& topic) {
  QWidget* modal = QApplication::activeModalWidget();
  QWidget* above = modal ? modal : this;
  // What stands behind a modal dialog could not be used.
  if (help_ && help_->parentWidget() != above) delete help_;
  if (!help_) help_ = new TfrmHelp(above);
  help_->showTopic(topic);
  help_->show();
  help_->raise();
  help_->activateWindow();
}

/// The menus' keys do not reach a modal dialog; its help does.
bool TfrmMain::eventFilter(QObject* watched, QEvent* event) {
  if (event->type() == QEvent::KeyPress && watched == QApplication::focusWidget() &&
      QApplication::activeModalWidget()) {
    const auto* key = static_cast<QKeyEvent*>(event);
    if (key->key() == Qt::Key_F1 && key->modifiers() == Qt::NoModifier) {
      showHelp(helpTopicOf(QApplication::focusWidget()));
      return true;
    }
  }
  return QMainWindow::eventFilter(watched, event);
}

void TfrmMain::openAddress(const std::string& address, const char* subject, const char* key) {
  if (address.empty())
    inform(QString::fromStdString(noAddressText(subject, key)));
  else
    context_.openOutside(QString::fromStdString(address));
}

void TfrmMain::openSupport() { openAddress(addresses_.support, "technical support", "support"); }

void TfrmMain::showOptions() { TfrmOption(context_, this).exec(); }

void TfrmMain::showAbout() {
  QMessageBox::about(this, tr("About Hollowmere"),
                     tr("<b>Hollowmere %1</b><p>Moves data between databases and JSON files.</p>"
                        "<p>Free software under the GNU General Public License, version 3 or later.</p>")
                         .arg(QStringLiteral(HOLLOWMERE_VERSION)));
}

void TfrmMain::showEvent(QShowEvent* event) {
  QMainWindow::showEvent(event);
  if (shown_) return;
  shown_ = true;
  if (context_.settings.showConnWindow) openConnectionList();
  startUp_->begin(noticesAfter_);
}

bool TfrmMain::mayExit() {
  for (const TMdiChild* child : childWindows())
    if (const QString refusal = child->exitRefusal(); !refusal.isEmpty()) {
      context_.prompt.error(refusal.toStdString());
      return false;
    }
  return true;
}

void TfrmMain::closeEvent(QCloseEvent* event) {
  event->ignore();
  if (!mayExit()) return;
  const auto windows = area_->subWindowList();
  for (auto window = windows.crbegin(); window != windows.crend(); ++window)
    if (!(*window)->close()) return;
  savePlacement(context_.store, placementGroup(), *this);
  saveSettings(context_.settings, context_.store, context_.prompt);
  event->accept();
}

void TfrmMain::dragEnterEvent(QDragEnterEvent* event) {
  if (event->mimeData()->hasUrls()) event->acceptProposedAction();
}

void TfrmMain::dropEvent(QDropEvent* event) {
  for (const QUrl& url : event->mimeData()->urls())
    if (url.isLocalFile()) openFile(url.toLocalFile());
}

}  // namespace hollowmere
