#pragma once

#include <QDialog>
#include <string>

class QSettings;

namespace hollowmere {

class TCodeEditor;

/// One text value, whole and over several lines.
class TValueDialog : public QDialog {
  Q_OBJECT

 public:
  /// The placement is kept in the store's group of the document window.
  TValueDialog(QSettings& store, const QString& caption, const std::string& text, bool readOnly,
               QWidget* parent = nullptr);
  ~TValueDialog() override;

  [[nodiscard]] std::string text() const;

 private:
  QSettings& store_;
  TCodeEditor* editor_;
};

}  // namespace hollowmere
