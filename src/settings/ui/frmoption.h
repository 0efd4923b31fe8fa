#pragma once

#include <QDialog>

#include "ui/propertygrid.h"
#include "ui/windowcontext.h"

namespace hollowmere {

/// The options dialog: shows the program's settings, and on OK takes and saves them. Modal.
class TfrmOption : public QDialog {
  Q_OBJECT

 public:
  explicit TfrmOption(TWindowContext& context, QWidget* parent = nullptr);

  void accept() override;

 private:
  void fill();

  TWindowContext& context_;
  TPropertyGrid* grid_;
};

}  // namespace hollowmere
