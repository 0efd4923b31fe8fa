#pragma once

#include <QString>

class QHeaderView;
class QSettings;
class QSplitter;
class QWidget;

namespace hollowmere {

/// Remembers where a window stood, in its own group of the settings store. One that would lie outside of
/// all screens is put back into view.
void savePlacement(QSettings& store, const QString& group, const QWidget& window);
void restorePlacement(QSettings& store, const QString& group, QWidget& window);

/// The same for column widths and splitters, by object name.
void saveState(QSettings& store, const QString& group, const QHeaderView& header, const QString& name);
void restoreState(QSettings& store, const QString& group, QHeaderView& header, const QString& name);
void saveState(QSettings& store, const QString& group, const QSplitter& splitter);
void restoreState(QSettings& store, const QString& group, QSplitter& splitter);

}  // namespace hollowmere
