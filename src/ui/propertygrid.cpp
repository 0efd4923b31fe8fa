#include "ui/propertygrid.h"

#include <QComboBox>
#include <QFileDialog>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLineEdit>
#include <QShortcut>
#include <QSpinBox>
#include <QStyledItemDelegate>
#include <QToolButton>
#include <limits>

#include "ui/choicebox.h"

namespace hollowmere {

namespace {

constexpr int propertyRole = Qt::UserRole + 1;

const QStringList& booleans() {
  static const QStringList texts{QStringLiteral("True"), QStringLiteral("False")};
  return texts;
}

/// A line with a button behind it.
class TButtonEditor : public QWidget {
 public:
  TButtonEditor(QWidget* parent, bool editable, const QString& caption) : QWidget(parent) {
    auto* layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    line = new QLineEdit(this);
    line->setReadOnly(!editable);
    line->setFrame(false);
    line->setAccessibleName(caption);
    button = new QToolButton(this);
    button->setText(QStringLiteral("..."));
    button->setAccessibleName(TPropertyGrid::tr("Choose %1").arg(caption));
    button->setToolTip(TPropertyGrid::tr("F4"));
    for (const QKeySequence& key : {QKeySequence(Qt::Key_F4), QKeySequence(Qt::ALT | Qt::Key_Down)})
      connect(new QShortcut(key, this, nullptr, nullptr, Qt::WidgetWithChildrenShortcut),
              &QShortcut::activated, button, [this] { button->click(); });
    layout->addWidget(line);
    layout->addWidget(button);
    setFocusProxy(line);
    setAutoFillBackground(true);
  }

  QLineEdit* line;
  QToolButton* button;
};

class TPropertyDelegate : public QStyledItemDelegate {
 public:
  explicit TPropertyDelegate(TPropertyGrid& grid) : QStyledItemDelegate(&grid), grid_(grid) {}

  QWidget* createEditor(QWidget* parent, const QStyleOptionViewItem&,
                        const QModelIndex& index) const override {
    const TProperty* property = grid_.property(index);
    if (!property || index.column() != 1) return nullptr;
    QWidget* editor = makeEditor(parent, *property, index);
    editor->setAccessibleName(property->caption);
    return editor;
  }

  void setEditorData(QWidget* editor, const QModelIndex& index) const override {
    const TProperty* property = grid_.property(index);
    if (!property) return;
    if (auto* box = qobject_cast<QComboBox*>(editor)) box->setCurrentText(property->value);
    if (auto* spin = qobject_cast<QSpinBox*>(editor)) spin->setValue(property->value.toInt());
    if (QLineEdit* line = lineOf(editor)) line->setText(property->value);
  }

  void setModelData(QWidget* editor, QAbstractItemModel*, const QModelIndex& index) const override {
    const TProperty* property = grid_.property(index);
    if (property && property->kind != TPropertyKind::Button) grid_.commit(index, textOf(editor));
  }

 private:
  static QLineEdit* lineOf(QWidget* editor) {
    if (auto* line = qobject_cast<QLineEdit*>(editor)) return line;
    return qobject_cast<QSpinBox*>(editor) || qobject_cast<QComboBox*>(editor)
               ? nullptr
               : editor->findChild<QLineEdit*>();
  }

  static QString textOf(QWidget* editor) {
    if (auto* box = qobject_cast<QComboBox*>(editor)) return box->currentText();
    if (auto* spin = qobject_cast<QSpinBox*>(editor)) return QString::number(spin->value());
    return lineOf(editor)->text();
  }

  QWidget* makeEditor(QWidget* parent, const TProperty& property, const QModelIndex& index) const {
    switch (property.kind) {
      case TPropertyKind::Boolean: return makeBox(parent, booleans());
      case TPropertyKind::Choice: return makeBox(parent, property.choices);
      case TPropertyKind::Number: {
        auto* spin = new QSpinBox(parent);
        spin->setFrame(false);
        spin->setRange(static_cast<int>(property.lowest),
                       static_cast<int>(std::min<qint64>(property.highest, std::numeric_limits<int>::max())));
        return spin;
      }
      case TPropertyKind::Text:
      case TPropertyKind::Password: {
        auto* line = new QLineEdit(parent);
        line->setFrame(false);
        if (property.kind == TPropertyKind::Password) line->setEchoMode(QLineEdit::Password);
        return line;
      }
      default: return makeButton(parent, property, index);
    }
  }

  QWidget* makeBox(QWidget* parent, const QStringList& choices) const {
    auto* box = new TChoiceBox(parent);
    box->addItems(choices);
    connect(box, &QComboBox::activated, this, [this, box] {
      if (!box->isFinal()) return;
      auto* self = const_cast<TPropertyDelegate*>(this);
      Q_EMIT self->commitData(box);
      Q_EMIT self->closeEditor(box);
    });
    return box;
  }

  QWidget* makeButton(QWidget* parent, const TProperty& property, const QModelIndex& index) const {
    const bool isFile = property.kind != TPropertyKind::Button;
    auto* editor = new TButtonEditor(parent, isFile, property.caption);
    auto* self = const_cast<TPropertyDelegate*>(this);
    const QPersistentModelIndex at(index);
    connect(editor->button, &QToolButton::clicked, editor, [self, editor, at] { self->press(editor, at); });
    return editor;
  }

  void press(TButtonEditor* editor, const QPersistentModelIndex& at) {
    const TProperty* property = grid_.property(at);
    if (!property) return;
    if (property->kind == TPropertyKind::Button) {
      const QString key = property->key;
      Q_EMIT closeEditor(editor);
      Q_EMIT grid_.buttonClicked(key);
      return;
    }
    // The view may end the edit, and with it the editor, as soon as the file dialog takes the focus.
    const QString typed = editor->line->text();
    Q_EMIT closeEditor(editor);
    const QString name = property->kind == TPropertyKind::SaveFile
                             ? QFileDialog::getSaveFileName(&grid_, property->caption, typed, {}, nullptr,
                                                            QFileDialog::DontConfirmOverwrite)
                             : QFileDialog::getOpenFileName(&grid_, property->caption, typed);
    if (!name.isEmpty()) grid_.commit(at, name);
  }

  TPropertyGrid& grid_;
};

}  // namespace

TPropertyGrid::TPropertyGrid(QWidget* parent) : QTreeWidget(parent) {
  setColumnCount(2);
  setHeaderLabels({tr("Setting"), tr("Value")});
  setAlternatingRowColors(true);
  setSelectionBehavior(QAbstractItemView::SelectRows);
  setEditTriggers(DoubleClicked | SelectedClicked | EditKeyPressed | AnyKeyPressed);
  setItemDelegate(new TPropertyDelegate(*this));
  header()->setStretchLastSection(true);
  setUniformRowHeights(true);
}

void TPropertyGrid::setProperties(std::vector<TProperty> properties) {
  const TProperty* current = property(currentIndex());
  const QString currentKey = current ? current->key : QString();
  clear();
  properties_ = std::move(properties);
  QTreeWidgetItem* category = nullptr;
  for (std::size_t i = 0; i < properties_.size(); ++i) {
    const TProperty& property = properties_[i];
    if (!property.category.isEmpty() && (!category || category->text(0) != property.category)) {
      category = new QTreeWidgetItem(this, {property.category});
      category->setFirstColumnSpanned(true);
      QFont bold = font();
      bold.setBold(true);
      category->setFont(0, bold);
      category->setFlags(Qt::ItemIsEnabled);
    }
    auto* item =
        category && !property.category.isEmpty() ? new QTreeWidgetItem(category) : new QTreeWidgetItem(this);
    item->setData(0, propertyRole, static_cast<int>(i));
    item->setText(0, property.caption);
    item->setFlags(Qt::ItemIsEnabled | Qt::ItemIsSelectable | Qt::ItemIsEditable);
    show(*item, property);
  }
  expandAll();
  resizeColumnToContents(0);
  // Who works by keyboard stays where the work was.
  if (QTreeWidgetItem* item = itemOf(currentKey)) setCurrentItem(item, 1);
}

void TPropertyGrid::show(QTreeWidgetItem& item, const TProperty& property) {
  const bool hidden = property.kind == TPropertyKind::Password && !property.value.isEmpty();
  item.setText(1, hidden ? QStringLiteral("********") : property.value);
}

QTreeWidgetItem* TPropertyGrid::itemOf(const QString& key) const {
  for (QTreeWidgetItemIterator at(const_cast<TPropertyGrid*>(this)); *at; ++at) {
    const QVariant place = (*at)->data(0, propertyRole);
    if (place.isValid() && properties_[static_cast<std::size_t>(place.toInt())].key == key) return *at;
  }
  return nullptr;
}

const TProperty* TPropertyGrid::property(const QModelIndex& index) const {
  const QVariant place = index.siblingAtColumn(0).data(propertyRole);
  return place.isValid() ? &properties_[static_cast<std::size_t>(place.toInt())] : nullptr;
}

QString TPropertyGrid::value(const QString& key) const {
  for (const TProperty& property : properties_)
    if (property.key == key) return property.value;
  return {};
}

void TPropertyGrid::setValue(const QString& key, const QString& text) {
  QTreeWidgetItem* item = itemOf(key);
  if (!item) return;
  TProperty& property = properties_[static_cast<std::size_t>(item->data(0, propertyRole).toInt())];
  property.value = text;
  show(*item, property);
}

void TPropertyGrid::editProperty(const QString& key) {
  if (QTreeWidgetItem* item = itemOf(key)) {
    setCurrentItem(item, 1);
    editItem(item, 1);
  }
}

bool TPropertyGrid::commit(const QModelIndex& index, const QString& text) {
  const TProperty* property = this->property(index);
  if (!property || property->value == text) return true;
  const QString key = property->key;
  const QString refusal = check_ ? check_(key, text) : QString();
  if (!refusal.isEmpty()) {
    Q_EMIT valueRefused(refusal);
    return false;
  }
  setValue(key, text);
  Q_EMIT valueEdited(key, text);
  return true;
}

/// A key begins an edit, or does nothing: a search would let the next key edit another row.
void TPropertyGrid::keyboardSearch(const QString&) {}

/// Whatever cell of a row begins the edit, the value is what is edited.
bool TPropertyGrid::edit(const QModelIndex& index, EditTrigger trigger, QEvent* event) {
  return QTreeWidget::edit(property(index) ? index.siblingAtColumn(1) : index, trigger, event);
}

}  // namespace hollowmere
