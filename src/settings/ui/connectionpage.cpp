#include "settings/ui/connectionpage.h"

#include <QComboBox>
#include <QFormLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QProxyStyle>
#include <algorithm>

#include "ui/windowcontext.h"

namespace hollowmere {

namespace {

constexpr int highestPort = 65535;
/// In characters; a longer one stands above its field.
constexpr qsizetype longestCaption = 40;

/// Passwords are shown as "*" whatever the desktop's style would take.
class TStarStyle : public QProxyStyle {
 public:
  int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                QStyleHintReturn* data) const override {
    return hint == SH_LineEdit_PasswordCharacter ? '*' : QProxyStyle::styleHint(hint, option, widget, data);
  }
};

QString fromView(std::string_view view) {
  return QString::fromUtf8(view.data(), static_cast<qsizetype>(view.size()));
}

void fillBox(QComboBox& box, const TConnectionField& field, const std::string& value) {
  const QSignalBlocker quiet(&box);
  box.clear();
  for (const std::string& choice : fieldChoices(field, value)) box.addItem(QString::fromStdString(choice));
  box.setCurrentIndex(box.findText(QString::fromStdString(value)));
}

}  // namespace

TConnectionPage::TConnectionPage(const TConnectionType& type, QWidget* parent)
    : QWidget(parent), type_(type) {
  setObjectName(QLatin1Char('p') + fromView(type.dbType));
  auto* layout = new QFormLayout(this);
  layout->setFieldGrowthPolicy(QFormLayout::ExpandingFieldsGrow);
  if (type.rows.empty())
    for (const TConnectionField& field : type.fields) addRow(*layout, field);
  for (const std::string_view member : type.rows)
    addRow(*layout, *std::ranges::find(type.fields, member, &TConnectionField::member));
  setValues(newConnectionValues(type));
}

void TConnectionPage::addRow(QFormLayout& layout, const TConnectionField& field) {
  QWidget* editor = makeEditor(field);
  const QString caption = text(std::string(field.caption));
  editor->setObjectName(QLatin1Char('e') + fromView(type_.dbType) + QLatin1Char('_') +
                        fromView(field.member));
  editor->setAccessibleName(caption);
  auto* label = new QLabel(caption, this);
  label->setBuddy(editor);
  if (caption.size() > longestCaption) {
    layout.addRow(label);
    layout.addRow(editor);
  } else {
    layout.addRow(label, editor);
  }
  editors_.emplace(field.member, editor);
}

QWidget* TConnectionPage::makeEditor(const TConnectionField& field) {
  if (field.kind != TFieldKind::Choice) return makeLine(field);
  auto* box = new QComboBox(this);
  connect(box, &QComboBox::currentIndexChanged, this, &TConnectionPage::edited);
  return box;
}

QWidget* TConnectionPage::makeLine(const TConnectionField& field) {
  auto* line = new QLineEdit(this);
  if (field.kind == TFieldKind::Number) line->setValidator(new QIntValidator(0, highestPort, line));
  if (field.kind == TFieldKind::Password) {
    auto* style = new TStarStyle;
    style->setParent(line);
    line->setStyle(style);
    line->setEchoMode(QLineEdit::Password);
  }
  connect(line, &QLineEdit::textChanged, this, &TConnectionPage::edited);
  return line;
}

TFieldValues TConnectionPage::values() const {
  TFieldValues values;
  for (const auto& [member, editor] : editors_) {
    const auto* box = qobject_cast<const QComboBox*>(editor);
    const QString value = box ? box->currentText() : qobject_cast<const QLineEdit*>(editor)->text();
    values.emplace(member, value.toStdString());
  }
  return values;
}

void TConnectionPage::setValues(const TFieldValues& values) {
  for (const TConnectionField& field : type_.fields) {
    const std::string& value = values.at(std::string(field.member));
    QWidget* editor = editors_.at(field.member);
    if (auto* box = qobject_cast<QComboBox*>(editor))
      fillBox(*box, field, value);
    else
      qobject_cast<QLineEdit*>(editor)->setText(QString::fromStdString(value));
  }
}

void TConnectionPage::focusField(std::string_view member) { editors_.at(member)->setFocus(); }

void TConnectionPage::focusFirst() {
  focusField(type_.rows.empty() ? type_.fields.front().member : type_.rows.front());
}

}  // namespace hollowmere
