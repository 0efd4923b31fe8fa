#pragma once

#include <QWidget>

class QBoxLayout;
class QLineEdit;
class QTextBrowser;

namespace hollowmere {

/// The help: pages that are part of the program, with links between them.
class TfrmHelp : public QWidget {
  Q_OBJECT

 public:
  /// A window of its own above the parent.
  explicit TfrmHelp(QWidget* parent);

  /// "mapping" for example; a topic without a page shows the contents.
  void showTopic(const QString& topic);

 protected:
  void keyPressEvent(QKeyEvent* event) override;

 private:
  void makeBar(QBoxLayout* layout);
  void find();

  QTextBrowser* pages_;
  QLineEdit* find_ = nullptr;
};

}  // namespace hollowmere
