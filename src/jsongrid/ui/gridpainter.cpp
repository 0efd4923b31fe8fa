#include "jsongrid/ui/gridpainter.h"

#include <QFontMetricsF>
#include <QIODevice>
#include <QPageLayout>
#include <QPainter>
#include <QPdfWriter>
#include <QTextOption>
#include <algorithm>
#include <exception>

#include "jsongrid/celltext.h"

namespace hollowmere {

namespace {

constexpr int fontPoints = 8;
constexpr std::size_t sampledRows = 200;
constexpr std::size_t shownBytes = 400;
constexpr int widestCell = 32;  // characters of average width
constexpr int mostLines = 6;
constexpr std::size_t rowsBetweenTellings = 64;

/// Lines break between words, and inside of those that are longer than a line.
QTextOption wrapped(Qt::Alignment alignment) {
  QTextOption option(alignment);
  option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
  return option;
}

QString shown(const TValue* value) {
  return QString::fromStdString(cellText(value, shownBytes)).replace(QLatin1Char('\t'), QLatin1Char(' '));
}

bool isNumber(const TValue* value) {
  return value && (value->is(TKind::Int) || value->is(TKind::Double) || value->is(TKind::Decimal));
}

/// Lets what writes to a device write to a file that is replaced whole.
class TFileDevice : public QIODevice {
 public:
  explicit TFileDevice(TSafeFile& file) : file_(file) { open(QIODevice::WriteOnly); }

  /// Throws what the writing has thrown.
  void check() const {
    if (fault_) std::rethrow_exception(fault_);
  }

 protected:
  qint64 readData(char*, qint64) override { return -1; }
  qint64 writeData(const char* bytes, qint64 size) override {
    if (fault_) return -1;
    try {
      file_.write({bytes, static_cast<std::size_t>(size)});
      return size;
    } catch (...) {
      // It must not pass through the library that called.
      fault_ = std::current_exception();
      return -1;
    }
  }

 private:
  TSafeFile& file_;
  std::exception_ptr fault_;
};

}  // namespace

bool TGridPainter::paint(QPagedPaintDevice& device, const TExportWatch& watch) {
  QPainter painter;
  if (!painter.begin(&device)) return false;
  font_.setPointSize(fontPoints);
  painter.setFont(font_);
  page_ = QRectF(painter.viewport());
  number_ = 0;
  measure(painter);
  for (const TColumns& columns : groups())
    if (!paintGroup(painter, device, columns, watch)) return false;
  return painter.end();
}

/// Widths by the captions and the first rows.
void TGridPainter::measure(QPainter& painter) {
  const QFontMetricsF metrics = painter.fontMetrics();
  line_ = metrics.lineSpacing();
  padding_ = metrics.averageCharWidth() / 2;
  const double widest = std::min(metrics.averageCharWidth() * widestCell, page_.width() - 2 * padding_);
  widths_.clear();
  for (std::size_t column = 0; column < table_.columns(); ++column) {
    double width = metrics.horizontalAdvance(QString::fromStdString(table_.columnName(column)));
    for (std::size_t row = 0; row < std::min(sampledRows, table_.rows()) && width < widest; ++row)
      width = std::max(width, metrics.horizontalAdvance(shown(table_.cell(row, column))));
    widths_.push_back(std::clamp(width, 3 * padding_, widest) + 3 * padding_);
  }
}

std::vector<TGridPainter::TColumns> TGridPainter::groups() const {
  std::vector<TColumns> found{{0, 0}};
  double used = 0;
  for (std::size_t column = 0; column < widths_.size(); ++column) {
    if (used > 0 && used + widths_[column] > page_.width()) {
      found.push_back({column, column});
      used = 0;
    }
    used += widths_[column];
    found.back().end = column + 1;
  }
  return found;
}

bool TGridPainter::paintGroup(QPainter& painter, QPagedPaintDevice& device, TColumns columns,
                              const TExportWatch& watch) {
  startPage(painter, device, columns);
  const double bottom = page_.bottom() - 2 * line_;
  std::vector<QString> texts(columns.end - columns.first);
  for (std::size_t row = 0; row < table_.rows(); ++row) {
    if (watch.stopped()) return false;
    if (watch.progress && row % rowsBetweenTellings == 0) watch.progress(row);
    for (std::size_t column = columns.first; column < columns.end; ++column)
      texts[column - columns.first] = shown(table_.cell(row, column));
    const double height = rowHeight(painter, columns, texts);
    if (y_ + height > bottom) startPage(painter, device, columns);
    drawRow(painter, columns, texts, height, row);
  }
  return true;
}

void TGridPainter::startPage(QPainter& painter, QPagedPaintDevice& device, TColumns columns) {
  if (number_++ > 0) device.newPage();
  y_ = page_.top();
  QFont bold = font_;
  bold.setBold(true);
  painter.setFont(bold);
  painter.drawText(QRectF(page_.left(), y_, page_.width(), line_), Qt::AlignLeft | Qt::TextSingleLine,
                   title_);
  y_ += 2 * line_;
  double x = page_.left();
  const double height = line_ + 2 * padding_;
  for (std::size_t column = columns.first; column < columns.end; ++column) {
    const QRectF cell(x, y_, widths_[column], height);
    painter.fillRect(cell, QColor(0xe8, 0xe8, 0xe8));
    const QRectF inner = cell.adjusted(padding_, padding_, -padding_, -padding_);
    painter.drawText(inner, Qt::AlignLeft | Qt::AlignTop,
                     painter.fontMetrics().elidedText(QString::fromStdString(table_.columnName(column)),
                                                      Qt::ElideRight, static_cast<int>(inner.width()) + 1));
    x += widths_[column];
  }
  drawFrame(painter, columns, height);
  y_ += height;
  painter.setFont(font_);
  painter.drawText(QRectF(page_.left(), page_.bottom() - line_, page_.width(), line_), Qt::AlignRight,
                   QString::number(number_));
}

double TGridPainter::rowHeight(QPainter& painter, TColumns columns, const std::vector<QString>& texts) const {
  const QFontMetricsF metrics = painter.fontMetrics();
  double height = line_;
  for (std::size_t column = columns.first; column < columns.end; ++column) {
    const QString& text = texts[column - columns.first];
    const double width = widths_[column] - 2 * padding_;
    // Most cells are one line: quicker to find out than where a text wraps.
    if (!text.contains(QLatin1Char('\n')) && metrics.horizontalAdvance(text) <= width) continue;
    const QRectF room(0, 0, width, mostLines * line_);
    height = std::max(height, painter.boundingRect(room, text, wrapped(Qt::AlignLeft)).height());
  }
  return std::min(height, mostLines * line_) + 2 * padding_;
}

void TGridPainter::drawRow(QPainter& painter, TColumns columns, const std::vector<QString>& texts,
                           double height, std::size_t row) {
  double x = page_.left();
  for (std::size_t column = columns.first; column < columns.end; ++column) {
    const QRectF cell(x, y_, widths_[column], height);
    const QRectF inner = cell.adjusted(padding_, padding_, -padding_, -padding_);
    const QString& text = texts[column - columns.first];
    const bool tall = painter.fontMetrics().horizontalAdvance(text) > inner.width() * mostLines ||
                      text.count(QLatin1Char('\n')) >= mostLines;
    // Only a text that does not fit is cut at the edge.
    if (tall) {
      painter.save();
      painter.setClipRect(inner);
    }
    painter.drawText(inner, text,
                     wrapped(isNumber(table_.cell(row, column)) ? Qt::AlignRight : Qt::AlignLeft));
    if (tall) painter.restore();
    x += widths_[column];
  }
  drawFrame(painter, columns, height);
  y_ += height;
}

void TGridPainter::drawFrame(QPainter& painter, TColumns columns, double height) const {
  painter.setPen(QPen(QColor(0x99, 0x99, 0x99), 0));
  double x = page_.left();
  painter.drawLine(QPointF(x, y_), QPointF(x, y_ + height));
  for (std::size_t column = columns.first; column < columns.end; ++column) {
    painter.drawLine(QPointF(x, y_ + height), QPointF(x + widths_[column], y_ + height));
    x += widths_[column];
    painter.drawLine(QPointF(x, y_), QPointF(x, y_ + height));
  }
  painter.setPen(Qt::black);
}

bool exportPdf(const TGridTable& table, TSafeFiles& files, const std::string& path, const QString& title,
               const QPageLayout& page, const TExportWatch& watch) {
  const auto file = files.create(path);
  TFileDevice device(*file);
  bool painted = false;
  {
    QPdfWriter writer(&device);
    writer.setPageLayout(page);
    writer.setTitle(title);
    writer.setCreator(QStringLiteral("Hollowmere"));
    painted = TGridPainter(table, title).paint(writer, watch);
  }
  device.check();
  if (!painted && watch.stopped()) return false;
  if (!painted) throw TFileError("Unable to write file", path, "the pages cannot be drawn");
  file->commit();
  return true;
}

}  // namespace hollowmere
