#pragma once

#include <QDialog>
#include <map>
#include <string>

#include "project/projectmodel.h"
#include "ui/windowcontext.h"

class QLabel;
class QLineEdit;
class QPlainTextEdit;
class QPushButton;

namespace hollowmere {

/// Configures the query of one data source: the members of its store's query object, and a test that shows
/// the first rows.
class TDataSourceDialog : public QDialog {
  Q_OBJECT

 public:
  TDataSourceDialog(TWindowContext& context, const TProject& project, const TDataSource& source,
                    QWidget* parent);

  /// What the fields hold.
  [[nodiscard]] TValue definition() const;

 private:
  void makeFields(const TDataSource& source);
  void bTestClick();
  void bViewGridClick();
  void showFault();
  [[nodiscard]] std::string queryFault() const;
  void accept() override;

  TWindowContext& context_;
  const TProject& project_;
  std::string name_;
  std::map<std::string, QLineEdit*> lines_;
  std::map<std::string, QPlainTextEdit*> texts_;
  QLineEdit* fileName_ = nullptr;
  QLabel* fault_ = nullptr;
  QPlainTextEdit* rows_ = nullptr;
  QPushButton* grid_ = nullptr;
  TList tested_;  ///< the rows that the last test gave
};

}  // namespace hollowmere
