#pragma once

#include <QStringList>
#include <QTableWidget>
#include <QTimer>
#include <QWidget>

#include "project/runcontrol.h"
#include "ui/windowcontext.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QProgressBar;
class QPushButton;
class QVBoxLayout;

namespace hollowmere {

/// The page "Run": progress as a whole and per thread, and the end of the log as it grows.
class TRunPage : public QWidget {
  Q_OBJECT

 public:
  TRunPage(TWindowContext& context, QWidget* parent);

  /// A new load begins.
  void clear();
  void showRun(const TRunControl& run);
  /// Lines of the log, joined by line feeds. Shown some moments later, many at once.
  void addLog(const std::string& lines);
  void setFiles(const std::string& logFile, const std::string& discardFile);
  [[nodiscard]] QString status() const;

 Q_SIGNALS:
  void startWanted();
  void stopWanted();

 private:
  QLabel* addCount(QHBoxLayout* row, const char* name, const QString& caption);
  void setCount(QLabel* label, std::int64_t count, bool standsOut);
  void showThreads(const std::vector<TThreadProgress>& threads, std::int64_t milliseconds);
  void showThread(int row, const TThreadProgress& thread, std::int64_t milliseconds);
  void makeThreads();
  void makeLog(QVBoxLayout* layout);
  void showLog();
  void filterLog();
  [[nodiscard]] bool passes(const QString& line) const;

  TWindowContext& context_;
  QPushButton* start_;
  QPushButton* stop_;
  QProgressBar* progress_;
  QLabel* loaded_;
  QLabel* discarded_;
  QLabel* skipped_;
  QLabel* processed_;
  QLabel* speed_;
  QLabel* time_;
  QTableWidget* threads_;
  QLineEdit* filter_;
  QPlainTextEdit* log_;
  QTimer logTimer_;
  QStringList lines_;    ///< the end of the log, unfiltered
  QStringList waiting_;  ///< not shown yet
  QString logFile_;
  QString discardFile_;
};

}  // namespace hollowmere
