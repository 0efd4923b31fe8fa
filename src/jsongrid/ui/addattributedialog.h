#pragma once

#include <QDialog>
#include <functional>
#include <string>

#include "settings/prompt.h"

class QLineEdit;

namespace hollowmere {

/// Asks for the name of a new attribute until it is taken or given up. Modal.
class TAddAttributeDialog : public QDialog {
  Q_OBJECT

 public:
  /// Adds an attribute of that name, or gives the message of its refusal.
  using TAdd = std::function<std::string(const std::string& name)>;

  TAddAttributeDialog(TPrompt& prompt, TAdd add, QWidget* parent);

  void accept() override;

 private:
  TPrompt& prompt_;
  TAdd add_;
  QLineEdit* name_;
};

}  // namespace hollowmere
