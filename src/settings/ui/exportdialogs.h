#pragma once

#include <QDialog>
#include <optional>
#include <string>

#include "settings/prompt.h"

class QLineEdit;
class QRadioButton;

namespace hollowmere {

/// Asks how connections are exported: without passwords, or enciphered under a pass phrase. Modal.
class TExportDialog : public QDialog {
  Q_OBJECT

 public:
  explicit TExportDialog(TPrompt& prompt, QWidget* parent = nullptr);

  /// Nothing: without passwords.
  [[nodiscard]] std::optional<std::string> passPhrase() const;
  void accept() override;

 private:
  TPrompt& prompt_;
  QRadioButton* bare_;
  QRadioButton* sealed_;
  QLineEdit* phrase_;
  QLineEdit* again_;
};

/// Asks for the pass phrase of exported connections. Modal.
class TPassPhraseDialog : public QDialog {
  Q_OBJECT

 public:
  explicit TPassPhraseDialog(QWidget* parent = nullptr);

  [[nodiscard]] std::string passPhrase() const;

 private:
  QLineEdit* phrase_;
};

}  // namespace hollowmere
