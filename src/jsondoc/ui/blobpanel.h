#pragma once

#include <QWidget>
#include <string>
#include <string_view>

#include "ui/windowcontext.h"

class QComboBox;
class QHBoxLayout;
class QLabel;
class QPlainTextEdit;
class QTabWidget;
class QToolButton;

namespace hollowmere {

/// The bytes of one binary value: as a picture, as text or as hexadecimal digits, with buttons to load, save,
/// clear and open them in another program. It keeps no document: who shows it takes edited() over.
class TBlobPanel : public QWidget {
  Q_OBJECT

 public:
  explicit TBlobPanel(TWindowContext& context, QWidget* parent = nullptr);

  /// Shows decoded bytes on the page that suits them. The pages are filled when they are seen.
  void showBytes(std::string bytes);
  /// The value that has the focus is not binary; with mayLoad a file can still be loaded into it.
  void showNothing(bool mayLoad = false);
  /// A text "&base64;" + Base64 as showBytes(), every other as showNothing(mayLoad).
  void showText(std::string_view text, bool mayLoad = false);
  void setReadOnly(bool readOnly);

  [[nodiscard]] bool hasBytes() const { return hasBytes_; }
  [[nodiscard]] const std::string& bytes() const { return bytes_; }

 public Q_SLOTS:
  /// Asks for a file and takes its bytes.
  void load();
  /// Asks for a file, "data." + extension by default, and writes the bytes to it.
  void save();
  void clear();
  /// Writes the bytes into the data folder with the chosen extension and opens that file.
  void openOutside();

 Q_SIGNALS:
  /// The user has loaded or cleared: the value's new text, "&base64;" + Base64 or empty. The panel shows it
  /// already.
  void edited(const QString& text);

 private:
  void makeButtons();
  QToolButton* addButton(const char* name, const QString& caption, const char* icon,
                         void (TBlobPanel::*click)());
  void makePages();
  QPlainTextEdit* makeView(const char* name, const QString& caption);
  void fillPage();
  void fillPicture();
  void enableButtons();
  [[nodiscard]] std::string chosenExtension() const;

  TWindowContext& context_;
  std::string bytes_;
  bool hasBytes_ = false;
  bool mayLoad_ = false;
  bool readOnly_ = false;
  unsigned filled_ = 0;  ///< a bit for each page that shows the bytes
  QHBoxLayout* buttons_ = nullptr;
  QToolButton* load_ = nullptr;
  QToolButton* save_ = nullptr;
  QToolButton* clear_ = nullptr;
  QToolButton* open_ = nullptr;
  QComboBox* extension_ = nullptr;
  QTabWidget* pages_ = nullptr;
  QLabel* picture_ = nullptr;
  QPlainTextEdit* text_ = nullptr;
  QPlainTextEdit* hex_ = nullptr;
  QLabel* state_ = nullptr;
};

}  // namespace hollowmere
