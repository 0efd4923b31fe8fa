#include "ui/messageprompt.h"

#include <QApplication>
#include <QClipboard>
#include <QMessageBox>
#include <QPushButton>

namespace hollowmere {

namespace {

QMessageBox::Icon iconOf(TPromptKind kind) {
  switch (kind) {
    case TPromptKind::Information: return QMessageBox::Information;
    case TPromptKind::Warning: return QMessageBox::Warning;
    case TPromptKind::Error: return QMessageBox::Critical;
    case TPromptKind::Confirmation: return QMessageBox::Question;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons buttonsOf(TButtons buttons) {
  switch (buttons) {
    case TButtons::Ok: return QMessageBox::Ok;
    case TButtons::YesNo: return QMessageBox::Yes | QMessageBox::No;
    case TButtons::YesNoCancel: return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

TAnswer answerOf(int button) {
  switch (button) {
    case QMessageBox::Yes: return TAnswer::Yes;
    case QMessageBox::No: return TAnswer::No;
    case QMessageBox::Cancel: return TAnswer::Cancel;
    default: return TAnswer::Ok;
  }
}

}  // namespace

TAnswer TMessagePrompt::ask(TPromptKind kind, const std::string& text, TButtons buttons) {
  // A message's line ends are carriage returns where the store's text has them.
  QString shown = QString::fromStdString(text);
  shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(QLatin1Char('\r'), QLatin1Char('\n'));
  QMessageBox box(iconOf(kind), QStringLiteral("Hollowmere"),
                  QCoreApplication::translate("Messages", shown.toUtf8()), buttonsOf(buttons),
                  QApplication::activeWindow());
  box.setObjectName(QStringLiteral("messageBox"));
  // A store's message must not be taken for markup.
  box.setTextFormat(Qt::PlainText);
  box.setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
  if (kind == TPromptKind::Error || kind == TPromptKind::Warning) {
    QPushButton* copy =
        box.addButton(QCoreApplication::translate("Messages", "&Copy"), QMessageBox::ActionRole);
    copy->setObjectName(QStringLiteral("bCopyMessage"));
    copy->disconnect();  // it must not close the box
    QObject::connect(copy, &QPushButton::clicked, &box,
                     [shown] { QApplication::clipboard()->setText(shown); });
  }
  // Escape means the answer that changes nothing. With a second button, the box does not see that by itself.
  if (buttons == TButtons::YesNo) box.setEscapeButton(QMessageBox::No);
  if (buttons == TButtons::Ok) box.setEscapeButton(QMessageBox::Ok);
  return answerOf(box.exec());
}

}  // namespace hollowmere
