#pragma once

#include <QObject>
#include <functional>
#include <optional>

#include "jsongrid/export.h"
#include "ui/windowcontext.h"

class QAction;
class QMenu;
class QPrinter;
class QWidget;

namespace hollowmere {

/// What leaves a grid: "Export Grid Data" into files, copies into the clipboard, and print. Every window with
/// a grid makes one and puts its actions where it likes. Long work runs on a thread with a dialog to stop it.
class TGridActions : public QObject {
  Q_OBJECT

 public:
  /// Asked for when an action is triggered. all: the whole table; selected: what is selected, nothing when
  /// nothing is. What all gives stays as it is while the action works.
  struct TSource {
    std::function<std::unique_ptr<TGridTable>()> all;
    std::function<std::unique_ptr<TGridTable>()> selected;
    std::function<QString()> title;
  };

  TGridActions(TWindowContext& context, QWidget& window, TSource source);

  [[nodiscard]] QMenu* exportMenu() const { return exportMenu_; }
  /// Copy in other forms.
  [[nodiscard]] QMenu* copyMenu() const { return copyMenu_; }
  [[nodiscard]] QAction* copySelected() const { return copySelected_; }
  [[nodiscard]] QAction* copyAll() const { return copyAll_; }
  [[nodiscard]] QAction* print() const { return print_; }
  [[nodiscard]] QAction* preview() const { return preview_; }

 private:
  struct TKindOfFile;

  QAction* make(const char* name, const QString& caption, const char* icon, std::function<void()> call);
  void makeExports();
  void makeCopies();
  void exportAs(const TKindOfFile& kind);
  bool write(const TGridTable& table, const QString& fileName, const TKindOfFile& kind, int filter);
  void copy(const TGridTable* table, TTextFormat format, bool captions);
  void copyCells(const TGridTable* table);
  void printAll();
  void previewAll();
  bool paint(const TGridTable& table, QPrinter& printer);
  bool work(const QString& caption, std::size_t rows, const std::function<bool(const TExportWatch&)>& call);

  TWindowContext& context_;
  QWidget& window_;
  TSource source_;
  QMenu* exportMenu_;
  QMenu* copyMenu_;
  QAction* copySelected_ = nullptr;
  QAction* copyAll_ = nullptr;
  QAction* print_ = nullptr;
  QAction* preview_ = nullptr;
};

}  // namespace hollowmere
