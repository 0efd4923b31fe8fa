#include "ui/placement.h"

#include <QHeaderView>
#include <QSettings>
#include <QSplitter>
#include <QWidget>

namespace hollowmere {

namespace {

QString keyOf(const QString& group, const QString& name) { return group + QLatin1Char('/') + name; }

}  // namespace

void savePlacement(QSettings& store, const QString& group, const QWidget& window) {
  store.setValue(keyOf(group, QStringLiteral("geometry")), window.saveGeometry());
}

void restorePlacement(QSettings& store, const QString& group, QWidget& window) {
  window.restoreGeometry(store.value(keyOf(group, QStringLiteral("geometry"))).toByteArray());
}

void saveState(QSettings& store, const QString& group, const QHeaderView& header, const QString& name) {
  store.setValue(keyOf(group, name), header.saveState());
}

void restoreState(QSettings& store, const QString& group, QHeaderView& header, const QString& name) {
  header.restoreState(store.value(keyOf(group, name)).toByteArray());
}

void saveState(QSettings& store, const QString& group, const QSplitter& splitter) {
  store.setValue(keyOf(group, splitter.objectName()), splitter.saveState());
}

void restoreState(QSettings& store, const QString& group, QSplitter& splitter) {
  splitter.restoreState(store.value(keyOf(group, splitter.objectName())).toByteArray());
}

}  // namespace hollowmere
