#pragma once

#include <QStringList>
#include <QTreeWidget>
#include <functional>
#include <vector>

namespace hollowmere {

enum class TPropertyKind {
  Text,
  Number,
  Boolean,   ///< "True" or "False"
  Choice,    ///< one of choices
  Password,  ///< shown as "*"
  SaveFile,  ///< a file name, with a button for a dialog
  OpenFile,
  Button,  ///< a text that only a button changes
};

/// One row of a property grid.
struct TProperty {
  QString key;
  QString category;
  QString caption;
  TPropertyKind kind = TPropertyKind::Text;
  QString value;
  QStringList choices;
  qint64 lowest = 0;
  qint64 highest = 2147483647;
};

/// Rows of captions and values under categories, edited in place: F2, a double click or typing begins, Enter
/// ends, Escape takes back; F4 or Alt+Down presses the button of a row in edit.
class TPropertyGrid : public QTreeWidget {
  Q_OBJECT

 public:
  /// Decides about an edited value: the message of its refusal, or empty. Asked before valueEdited().
  using TCheck = std::function<QString(const QString& key, const QString& text)>;

  explicit TPropertyGrid(QWidget* parent = nullptr);

  void setProperties(std::vector<TProperty> properties);
  [[nodiscard]] QString value(const QString& key) const;
  /// Shows a value without asking or telling.
  void setValue(const QString& key, const QString& text);
  void setCheck(TCheck check) { check_ = std::move(check); }
  /// Puts the row of that key into edit.
  void editProperty(const QString& key);

  /// The row of an index, or nullptr for a category.
  [[nodiscard]] const TProperty* property(const QModelIndex& index) const;
  /// For the editors: takes an edited text. False when it was refused.
  bool commit(const QModelIndex& index, const QString& text);

 Q_SIGNALS:
  void valueEdited(const QString& key, const QString& text);
  void valueRefused(const QString& message);
  void buttonClicked(const QString& key);

 protected:
  bool edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) override;
  void keyboardSearch(const QString& text) override;

 private:
  QTreeWidgetItem* itemOf(const QString& key) const;
  void show(QTreeWidgetItem& item, const TProperty& property);

  std::vector<TProperty> properties_;
  TCheck check_;
};

}  // namespace hollowmere
