#include "ui/icons.h"

#include <QGuiApplication>
#include <QIconEngine>
#include <QPainter>
#include <QPainterPath>
#include <QPalette>
#include <cmath>
#include <map>

namespace hollowmere {

namespace {

using TDraw = void (*)(QPainter&);

// Each icon is drawn on a square of 16 by 16 units.

void page(QPainter& p) { p.drawPolygon(QPolygonF({{4, 2}, {9, 2}, {12, 5}, {12, 14}, {4, 14}})); }

void plus(QPainter& p) {
  p.drawLine(QPointF(8, 4), QPointF(8, 12));
  p.drawLine(QPointF(4, 8), QPointF(12, 8));
}

void minus(QPainter& p) { p.drawLine(QPointF(4, 8), QPointF(12, 8)); }

void folder(QPainter& p) {
  p.drawPolygon(QPolygonF({{2, 4}, {6, 4}, {7.5, 5.5}, {14, 5.5}, {14, 13}, {2, 13}}));
}

void disk(QPainter& p) {
  p.drawRect(QRectF(3, 3, 10, 10));
  p.drawRect(QRectF(5.5, 3, 5, 3.5));
  p.drawRect(QRectF(5, 9, 6, 4));
}

void triangle(QPainter& p) { p.drawPolygon(QPolygonF({{5, 3}, {13, 8}, {5, 13}})); }

void square(QPainter& p) { p.drawRect(QRectF(4, 4, 8, 8)); }

void up(QPainter& p) { p.drawPolyline(QPolygonF({{4, 9}, {8, 5}, {12, 9}})); }

void down(QPainter& p) { p.drawPolyline(QPolygonF({{4, 7}, {8, 11}, {12, 7}})); }

void left(QPainter& p) { p.drawPolyline(QPolygonF({{9, 4}, {5, 8}, {9, 12}})); }

void right(QPainter& p) { p.drawPolyline(QPolygonF({{7, 4}, {11, 8}, {7, 12}})); }

void toFirst(QPainter& p) {
  p.drawLine(QPointF(4, 4), QPointF(4, 12));
  p.drawPolyline(QPolygonF({{11, 4}, {7, 8}, {11, 12}}));
}

void toLast(QPainter& p) {
  p.drawLine(QPointF(12, 4), QPointF(12, 12));
  p.drawPolyline(QPolygonF({{5, 4}, {9, 8}, {5, 12}}));
}

void copies(QPainter& p) {
  p.drawRect(QRectF(3, 3, 7, 8));
  p.drawPolyline(QPolygonF({{12, 5}, {13, 5}, {13, 13}, {6, 13}, {6, 12.5}}));
}

void back(QPainter& p) {
  p.drawArc(QRectF(4, 5, 8, 8), -60 * 16, 210 * 16);
  p.drawPolyline(QPolygonF({{3, 5}, {4.5, 8.5}, {8, 7}}));
}

void forward(QPainter& p) {
  p.drawArc(QRectF(4, 5, 8, 8), 30 * 16, 210 * 16);
  p.drawPolyline(QPolygonF({{13, 5}, {11.5, 8.5}, {8, 7}}));
}

void cross(QPainter& p) {
  p.drawLine(QPointF(4, 4), QPointF(12, 12));
  p.drawLine(QPointF(12, 4), QPointF(4, 12));
}

void glass(QPainter& p) {
  p.drawEllipse(QPointF(7, 7), 4, 4);
  p.drawLine(QPointF(10, 10), QPointF(13.5, 13.5));
}

void gear(QPainter& p) {
  p.drawEllipse(QPointF(8, 8), 3, 3);
  for (int i = 0; i < 8; ++i) {
    const double a = i * 3.14159265 / 4;
    p.drawLine(QPointF(8 + 4 * std::cos(a), 8 + 4 * std::sin(a)),
               QPointF(8 + 6 * std::cos(a), 8 + 6 * std::sin(a)));
  }
}

void cylinder(QPainter& p) {
  p.drawEllipse(QRectF(3, 2, 10, 4));
  p.drawLine(QPointF(3, 4), QPointF(3, 12));
  p.drawLine(QPointF(13, 4), QPointF(13, 12));
  p.drawArc(QRectF(3, 10, 10, 4), 180 * 16, 180 * 16);
}

void question(QPainter& p) {
  p.drawEllipse(QPointF(8, 8), 6, 6);
  p.drawText(QRectF(0, 0, 16, 16), Qt::AlignCenter, QStringLiteral("?"));
}

void pencil(QPainter& p) { p.drawPolygon(QPolygonF({{3, 13}, {4, 10}, {11, 3}, {13, 5}, {6, 12}})); }

void lines(QPainter& p) {
  for (int y = 4; y <= 12; y += 4) p.drawLine(QPointF(3, y), QPointF(13, y));
}

/// The program itself: a store that flows into a document.
void program(QPainter& p) {
  p.drawEllipse(QRectF(1.5, 3, 6, 3));
  p.drawLine(QPointF(1.5, 4.5), QPointF(1.5, 11.5));
  p.drawLine(QPointF(7.5, 4.5), QPointF(7.5, 11.5));
  p.drawArc(QRectF(1.5, 10, 6, 3), 180 * 16, 180 * 16);
  p.drawPolyline(QPolygonF({{9, 5.5}, {11, 8}, {9, 10.5}}));
  p.drawPolyline(QPolygonF({{12, 3}, {14.5, 3}, {14.5, 13}, {12, 13}}));
}

/// A mapping: fields of one side joined with those of the other.
void mapping(QPainter& p) {
  p.drawRect(QRectF(2, 3, 4, 4));
  p.drawRect(QRectF(10, 3, 4, 4));
  p.drawRect(QRectF(10, 10, 4, 4));
  p.drawLine(QPointF(6, 5), QPointF(10, 5));
  p.drawPolyline(QPolygonF({{8, 5}, {8, 12}, {10, 12}}));
}

void outside(QPainter& p) {
  p.drawPolyline(QPolygonF({{8, 4}, {3, 4}, {3, 13}, {12, 13}, {12, 8}}));
  p.drawLine(QPointF(7, 9), QPointF(13, 3));
  p.drawPolyline(QPolygonF({{9.5, 3}, {13, 3}, {13, 6.5}}));
}

void printer(QPainter& p) {
  p.drawRect(QRectF(5, 2, 6, 4));
  p.drawRect(QRectF(2, 6, 12, 5));
  p.drawRect(QRectF(5, 9, 6, 5));
}

void branch(QPainter& p) {
  p.drawRect(QRectF(2, 2, 5, 4));
  p.drawRect(QRectF(9, 9, 5, 4));
  p.drawPolyline(QPolygonF({{4.5, 6}, {4.5, 11}, {9, 11}}));
}

const std::map<std::string, TDraw>& drawings() {
  static const std::map<std::string, TDraw> table{{"document-new", page},
                                                  {"document-open", folder},
                                                  {"document-save", disk},
                                                  {"document-save-as", disk},
                                                  {"document-open-external", outside},
                                                  {"document-print", printer},
                                                  {"list-add-nested", branch},
                                                  {"media-playback-start", triangle},
                                                  {"media-playback-stop", square},
                                                  {"list-add", plus},
                                                  {"list-remove", minus},
                                                  {"go-up", up},
                                                  {"go-down", down},
                                                  {"go-previous", left},
                                                  {"go-next", right},
                                                  {"go-first", toFirst},
                                                  {"go-last", toLast},
                                                  {"edit-copy", copies},
                                                  {"edit-undo", back},
                                                  {"edit-redo", forward},
                                                  {"edit-clear", cross},
                                                  {"edit-delete", cross},
                                                  {"edit-find", glass},
                                                  {"configure", gear},
                                                  {"network-server", cylinder},
                                                  {"help-contents", question},
                                                  {"document-edit", pencil},
                                                  {"view-list-text", lines},
                                                  {"application-exit", cross},
                                                  {"hollowmere", program},
                                                  {"hollowmere-project", mapping}};
  return table;
}

class TDrawnIcon : public QIconEngine {
 public:
  explicit TDrawnIcon(TDraw draw) : draw_(draw) {}

  void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
    const auto group = mode == QIcon::Disabled ? QPalette::Disabled : QPalette::Active;
    painter->save();
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setPen(QPen(QGuiApplication::palette().color(group, QPalette::ButtonText), 1.3));
    painter->translate(rect.topLeft());
    painter->scale(rect.width() / 16.0, rect.height() / 16.0);
    draw_(*painter);
    painter->restore();
  }

  QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
    QPixmap pixmap(size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    paint(&painter, QRect(QPoint(), size), mode, state);
    return pixmap;
  }

  [[nodiscard]] QIconEngine* clone() const override { return new TDrawnIcon(draw_); }

 private:
  TDraw draw_;
};

}  // namespace

QIcon themeIcon(const char* name) {
  const QString themed = QLatin1String(name);
  if (QIcon::hasThemeIcon(themed)) return QIcon::fromTheme(themed);
  const auto found = drawings().find(name);
  return found == drawings().end() ? QIcon() : QIcon(new TDrawnIcon(found->second));
}

}  // namespace hollowmere
