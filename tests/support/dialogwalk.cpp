#include "support/dialogwalk.h"

#include <gtest/gtest.h>

#include <QAbstractButton>
#include <QAbstractSpinBox>
#include <QAccessible>
#include <QApplication>
#include <QComboBox>
#include <QFile>
#include <QFileDialog>
#include <QGroupBox>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QMap>
#include <QMenu>
#include <QMenuBar>
#include <QRadioButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QSet>
#include <QSplitter>
#include <QStackedWidget>
#include <QTabBar>
#include <QTest>
#include <QTimer>
#include <QTreeWidget>
#include <QtTest>

namespace hollowmere {

namespace {

constexpr QSize smallScreen(1366, 768);

/// Whether what is inside of a widget is its own affair.
bool isWhole(const QWidget& widget) {
  if (qobject_cast<const QScrollArea*>(&widget)) return false;
  return qobject_cast<const QComboBox*>(&widget) || qobject_cast<const QAbstractSpinBox*>(&widget) ||
         qobject_cast<const QLineEdit*>(&widget) || qobject_cast<const QAbstractScrollArea*>(&widget) ||
         qobject_cast<const QTabBar*>(&widget) || qobject_cast<const QScrollBar*>(&widget);
}

QList<QWidget*> inner(const QWidget& widget) {
  QList<QWidget*> found;
  if (isWhole(widget)) return found;
  // A stack keeps its pages in the order in which they were shown, and hides all but one.
  if (const auto* stack = qobject_cast<const QStackedWidget*>(&widget)) return {stack->currentWidget()};
  if (const auto* splitter = qobject_cast<const QSplitter*>(&widget)) {
    for (int i = 0; i < splitter->count(); ++i) found.append(splitter->widget(i));
    return found;
  }
  for (QObject* object : widget.children())
    if (auto* below = qobject_cast<QWidget*>(object); below && !below->isWindow()) found.append(below);
  return found;
}

void collect(const QWidget& widget, QList<QWidget*>& all) {
  for (QWidget* below : inner(widget)) {
    all.append(below);
    collect(*below, all);
  }
}

QList<QWidget*> visibleWidgets(const QWidget& window) {
  QList<QWidget*> all;
  collect(window, all);
  all.removeIf([](const QWidget* widget) { return !widget->isVisible(); });
  return all;
}

bool takesTab(const QWidget& widget) {
  return widget.isEnabled() && !widget.focusProxy() && (widget.focusPolicy() & Qt::TabFocus) == Qt::TabFocus;
}

std::string nameOf(const QWidget& widget) {
  return (widget.objectName().isEmpty()
              ? QLatin1String("unnamed ") + QLatin1String(widget.metaObject()->className())
              : widget.objectName())
      .toStdString();
}

void expectNames(const QList<QWidget*>& widgets) {
  for (QWidget* widget : widgets) {
    if (!(widget->focusPolicy() & Qt::TabFocus) || widget->focusProxy()) continue;
    EXPECT_FALSE(widget->objectName().isEmpty()) << "no object name: " << nameOf(*widget);
    QAccessibleInterface* seen = QAccessible::queryAccessibleInterface(widget);
    ASSERT_NE(seen, nullptr) << nameOf(*widget);
    EXPECT_FALSE(seen->text(QAccessible::Name).isEmpty()) << "no accessible name: " << nameOf(*widget);
  }
}

QStringList captionsOf(QWidget& widget) {
  if (auto* button = qobject_cast<QAbstractButton*>(&widget)) return {button->text()};
  if (auto* group = qobject_cast<QGroupBox*>(&widget)) return {group->title()};
  if (auto* label = qobject_cast<QLabel*>(&widget))
    return label->buddy() ? QStringList(label->text()) : QStringList();
  QStringList captions;
  if (auto* tabs = qobject_cast<QTabBar*>(&widget))
    for (int i = 0; i < tabs->count(); ++i) captions.append(tabs->tabText(i));
  if (auto* menus = qobject_cast<QMenuBar*>(&widget))
    for (const QAction* action : menus->actions()) captions.append(action->text());
  return captions;
}

void expectNoClash(const QList<QWidget*>& widgets) {
  QMap<QString, QString> taken;
  for (QWidget* widget : widgets)
    for (const QString& caption : captionsOf(*widget)) {
      const QString key = QKeySequence::mnemonic(caption).toString();
      if (key.isEmpty()) continue;
      EXPECT_FALSE(taken.contains(key))
          << key.toStdString() << ": " << caption.toStdString() << " and " << taken.value(key).toStdString();
      taken.insert(key, caption);
    }
}

/// One of several radio buttons has the focus for all of them.
bool standsFor(const QWidget& reached, const QWidget& sought) {
  return qobject_cast<const QRadioButton*>(&reached) && qobject_cast<const QRadioButton*>(&sought) &&
         reached.parentWidget() == sought.parentWidget();
}

void expectTabReaches(QWidget& window, const QList<QWidget*>& widgets) {
  QList<QWidget*> sought;
  for (QWidget* widget : widgets)
    if (takesTab(*widget)) sought.append(widget);
  if (sought.isEmpty()) return;
  QWidget* const before = QApplication::focusWidget();
  sought.first()->setFocus(Qt::TabFocusReason);
  QSet<const QWidget*> reached;
  for (qsizetype i = 0; i < 2 * sought.size() + 4; ++i) {
    if (const QWidget* focus = QApplication::focusWidget()) reached.insert(focus);
    QTest::keyClick(QApplication::focusWidget() ? QApplication::focusWidget() : &window, Qt::Key_Tab);
  }
  for (const QWidget* widget : sought)
    EXPECT_TRUE(std::any_of(reached.begin(), reached.end(),
                            [widget](const QWidget* at) {
                              return at == widget || widget->isAncestorOf(at) || standsFor(*at, *widget);
                            }))
        << "Tab does not reach " << nameOf(*widget);
  if (before) before->setFocus();
}

QString quoted(const QString& text) {
  QString plain = text;
  return QLatin1Char('"') + plain.replace(QLatin1Char('\n'), QLatin1String("\\n")) + QLatin1Char('"');
}

QString textOf(QWidget& widget) {
  QStringList texts = captionsOf(widget);
  if (auto* label = qobject_cast<QLabel*>(&widget)) texts = {label->text()};
  if (auto* line = qobject_cast<QLineEdit*>(&widget)) texts = {line->displayText()};
  if (auto* box = qobject_cast<QComboBox*>(&widget)) texts = {box->currentText()};
  QString all;
  for (const QString& text : texts) all += QLatin1Char(' ') + quoted(text);
  return all;
}

QString columnsOf(const QWidget& widget) {
  const auto* view = qobject_cast<const QAbstractItemView*>(&widget);
  if (!view || !view->model()) return {};
  QStringList captions;
  for (int i = 0; i < view->model()->columnCount(); ++i)
    captions.append(view->model()->headerData(i, Qt::Horizontal).toString());
  return QLatin1String(" columns: ") + captions.join(QLatin1String(" | "));
}

void describeRows(const QTreeWidget& tree, const QString& indent, QString& out) {
  for (QTreeWidgetItemIterator at(const_cast<QTreeWidget*>(&tree)); *at; ++at) {
    const QString further = (*at)->parent() ? QStringLiteral("  ") : QString();
    out += indent + further + QLatin1String("row ") + quoted((*at)->text(0)) + QLatin1Char('\n');
  }
}

void describeMenu(const QList<QAction*>& actions, const QString& indent, QString& out) {
  for (const QAction* action : actions) {
    if (action->isSeparator()) continue;
    out +=
        indent + (action->menu() ? QLatin1String("menu ") : QLatin1String("item ")) + quoted(action->text());
    if (!action->shortcut().isEmpty()) out += QLatin1Char(' ') + action->shortcut().toString();
    out += QLatin1Char('\n');
    if (action->menu()) describeMenu(action->menu()->actions(), indent + QLatin1String("  "), out);
  }
}

void describe(QWidget& widget, const QString& indent, QString& out) {
  QString further = indent;
  // What has no name is there for the layout.
  if (!widget.objectName().isEmpty() && !widget.objectName().startsWith(QLatin1String("qt_"))) {
    QString type = QLatin1String(widget.metaObject()->className());
    out += indent + widget.objectName() + QLatin1Char(' ') + type.remove(QLatin1String("hollowmere::"));
    out += widget.isWindow() ? QLatin1Char(' ') + quoted(widget.windowTitle()) : textOf(widget);
    if (!widget.accessibleName().isEmpty()) out += QLatin1String(" named ") + quoted(widget.accessibleName());
    out += columnsOf(widget);
    if (!widget.isEnabled()) out += QLatin1String(" disabled");
    if (widget.isHidden() && !widget.isWindow()) out += QLatin1String(" hidden");
    out += QLatin1Char('\n');
    further += QLatin1String("  ");
  }
  if (const auto* tree = qobject_cast<const QTreeWidget*>(&widget)) describeRows(*tree, further, out);
  if (const auto* menus = qobject_cast<const QMenuBar*>(&widget))
    describeMenu(menus->actions(), further, out);
  for (const QAction* action : widget.actions())
    if (!action->objectName().isEmpty())
      out += further + QLatin1String("action ") + action->objectName() + QLatin1Char(' ') +
             quoted(action->text()) + QLatin1Char(' ') + QKeySequence::listToString(action->shortcuts()) +
             QLatin1Char('\n');
  for (QWidget* below : inner(widget)) describe(*below, further, out);
}

void compareGolden(const QString& found, const std::string& name) {
  QFile file(QStringLiteral(HOLLOWMERE_TESTS_DIR "/cases/windows/") + QString::fromStdString(name) +
             QLatin1String(".txt"));
  if (qEnvironmentVariableIntValue("UPDATE_GOLDENS") == 1) {
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << file.fileName().toStdString();
    file.write(found.toUtf8());
    return;
  }
  ASSERT_TRUE(file.open(QIODevice::ReadOnly)) << file.fileName().toStdString();
  EXPECT_EQ(QString::fromUtf8(file.readAll()).toStdString(), found.toStdString());
}

}  // namespace

QString describeWindow(const QWidget& window) {
  QString out;
  describe(const_cast<QWidget&>(window), {}, out);
  return out;
}

void walkWindow(QWidget& window, const std::string& name) {
  SCOPED_TRACE(name);
  window.show();
  window.activateWindow();
  ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
  const QList<QWidget*> widgets = visibleWidgets(window);
  expectNames(widgets);
  expectNoClash(widgets);
  expectTabReaches(window, widgets);
  const QSize needed = window.minimumSizeHint().expandedTo(window.minimumSize()).expandedTo(window.size());
  EXPECT_LE(needed.width(), smallScreen.width());
  EXPECT_LE(needed.height(), smallScreen.height());
  compareGolden(describeWindow(window), name);
}

void whenDialog(const QString& name, std::function<void(QDialog&)> call) {
  auto* timer = new QTimer(QCoreApplication::instance());
  QObject::connect(timer, &QTimer::timeout, timer, [timer, name, call = std::move(call)] {
    auto* dialog = qobject_cast<QDialog*>(QApplication::activeModalWidget());
    if (!dialog || !dialog->isActiveWindow() || (!name.isEmpty() && dialog->objectName() != name)) return;
    timer->stop();
    timer->deleteLater();
    call(*dialog);
  });
  timer->start(0);
}

void whenFileDialog(const std::string& path) {
  whenDialog(QStringLiteral("QFileDialog"), [path](QDialog& dialog) {
    child<QLineEdit>(dialog, "fileNameEdit").setText(QString::fromStdString(path));
    QMetaObject::invokeMethod(&dialog, "accept");
  });
}

void click(const QWidget& window, const char* name) {
  QTest::mouseClick(&child<QAbstractButton>(window, name), Qt::LeftButton);
}

}  // namespace hollowmere
