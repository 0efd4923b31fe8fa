#pragma once

#include <QTreeWidget>
#include <QWidget>
#include <map>
#include <vector>

#include "project/projecteditor.h"
#include "project/ui/previewjob.h"
#include "ui/windowcontext.h"

class QHBoxLayout;
class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;
class QSplitter;

namespace hollowmere {

/// The mapping tree; dragging moves nodes by the editor's rules.
class TMappingTree : public QTreeWidget {
  Q_OBJECT

 public:
  explicit TMappingTree(QWidget* parent);
  /// The path of an item in the forest.
  [[nodiscard]] static TNodePath pathOf(const QTreeWidgetItem* item);
  [[nodiscard]] QTreeWidgetItem* itemAt(const TNodePath& path) const;

 Q_SIGNALS:
  void moved(const hollowmere::TNodePath& from, const hollowmere::TNodePath& to);

 protected:
  void dropEvent(QDropEvent* event) override;
};

/// The page "Data Mapping": the tree, and beside it what each source row becomes.
class TMappingPage : public QWidget {
  Q_OBJECT

 public:
  TMappingPage(TWindowContext& context, TProjectEditor& editor, QWidget* parent);
  ~TMappingPage() override;

  /// Shows the project as it is now and reads a new preview.
  void refresh();
  /// What the source cell of a node offers.
  [[nodiscard]] QStringList sourceChoices(const TNodePath& path) const;
  [[nodiscard]] const TProjectEditor& editor() const { return editor_; }

 Q_SIGNALS:
  void edited();
  void refused(const QString& message);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void makeButtons();
  void makePreview();
  QPushButton* addButton(const char* name, const QString& caption, const char* icon,
                         void (TMappingPage::*click)());
  void insert(QTreeWidgetItem* parent, int place, const TMapNode& node);
  void sync(QTreeWidgetItem* parent, const std::vector<TMapNode>& before, const std::vector<TMapNode>& now);
  void rebuild();
  void showCells(const TNodePath& path);
  void markFaults();
  [[nodiscard]] std::map<TNodePath, QString> faults() const;
  void act(const std::string& refusal);
  [[nodiscard]] TNodePath path() const;
  void bAddMapTargetClick();
  void bAddAttrMapClick();
  void bAddAllClick();
  void bDelMapClick();
  void bUpMapClick();
  void bDownMapClick();
  void bClearMapClick();
  void onChanged(QTreeWidgetItem* item, int column);
  void onFind();
  void requestPreview();
  void onPreview(std::size_t root, const TPreviewResult& result);
  void showRow(int row);
  [[nodiscard]] const TPreviewRow* shownRow() const;
  void bViewRowClick();
  void bViewDocumentClick();

  TWindowContext& context_;
  TProjectEditor& editor_;
  TMappingTree* tree_;
  QSplitter* splitter_;
  QHBoxLayout* buttons_;
  QLineEdit* find_;
  QPlainTextEdit* rowText_;
  QPlainTextEdit* document_;
  QLabel* position_;
  QLabel* fault_;
  QPushButton* previous_;
  QPushButton* next_;
  QPushButton* viewRow_;
  QPushButton* viewDocument_;
  TPreviewJob preview_;
  TPreviewResult result_;
  std::vector<TMapNode> shown_;         ///< what the tree shows
  std::map<TNodePath, QString> marks_;  ///< the nodes that are marked as wrong, and why
  std::size_t previewRoot_ = 0;
  int row_ = 0;
  bool filling_ = false;
  bool previewIsOld_ = true;  ///< it was read for the tree as it was
};

}  // namespace hollowmere
