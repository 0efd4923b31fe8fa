#pragma once

#include <QFont>
#include <QRectF>
#include <QString>
#include <vector>

#include "jsongrid/export.h"

class QPageLayout;
class QPagedPaintDevice;
class QPainter;

namespace hollowmere {

/// Draws a table on pages: its title, captions on each page, the page's number. Columns that do not fit
/// beside each other follow on further pages, after all rows. Long cells are shortened. One page is held at a
/// time, so that the rows may be many. The table outlives it.
class TGridPainter {
 public:
  TGridPainter(const TGridTable& table, QString title) : table_(table), title_(std::move(title)) {}

  /// From the device's first page on. False when it was stopped or nothing can be drawn there.
  bool paint(QPagedPaintDevice& device, const TExportWatch& watch);

 private:
  struct TColumns {
    std::size_t first;
    std::size_t end;
  };

  void measure(QPainter& painter);
  [[nodiscard]] std::vector<TColumns> groups() const;
  bool paintGroup(QPainter& painter, QPagedPaintDevice& device, TColumns columns, const TExportWatch& watch);
  void startPage(QPainter& painter, QPagedPaintDevice& device, TColumns columns);
  [[nodiscard]] double rowHeight(QPainter& painter, TColumns columns,
                                 const std::vector<QString>& texts) const;
  void drawRow(QPainter& painter, TColumns columns, const std::vector<QString>& texts, double height,
               std::size_t row);
  void drawFrame(QPainter& painter, TColumns columns, double height) const;

  const TGridTable& table_;
  QString title_;
  QFont font_;
  std::vector<double> widths_;  ///< of columns, with padding
  QRectF page_;                 ///< what may be drawn on
  double line_ = 0;             ///< height of a line of text
  double padding_ = 0;
  double y_ = 0;
  int number_ = 0;  ///< of the page
};

/// Writes a table as a PDF file. False when it was stopped; then, and when it throws TFileError, the file is
/// as it was before. May run on a thread of its own.
bool exportPdf(const TGridTable& table, TSafeFiles& files, const std::string& path, const QString& title,
               const QPageLayout& page, const TExportWatch& watch);

}  // namespace hollowmere
