#pragma once

#include <QComboBox>

namespace hollowmere {

/// The editor of a cell with choices. A choice from its open list is final; the arrow keys and letters of a
/// closed one only walk through the choices, and Enter, Tab or leaving takes the one that is shown.
class TChoiceBox : public QComboBox {
 public:
  using QComboBox::QComboBox;

  void showPopup() override {
    listWasOpen_ = true;
    QComboBox::showPopup();
  }

  /// To be asked when activated() comes: whether the edit is over with it.
  [[nodiscard]] bool isFinal() const { return listWasOpen_; }

 private:
  bool listWasOpen_ = false;
};

}  // namespace hollowmere
