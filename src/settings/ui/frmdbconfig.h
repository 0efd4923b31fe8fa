#pragma once

#include <QDialog>
#include <optional>
#include <string_view>
#include <vector>

#include "settings/ui/connectiontester.h"
#include "ui/windowcontext.h"

class QComboBox;
class QLabel;
class QPushButton;
class QSplitter;
class QTabWidget;
class QTextEdit;

namespace hollowmere {

class TConnectionPage;

/// The connection dialog: a page for each type of database, a help panel, and a test of the connection.
/// Modal; connection() is its result.
class TfrmDBConfig : public QDialog {
  Q_OBJECT

 public:
  explicit TfrmDBConfig(TWindowContext& context, QWidget* parent = nullptr);

  /// Leaves only the pages of those types. Without this call all are there.
  void loadAllowedDataSourceTypes(const std::vector<std::string_view>& dbTypes);
  /// Lets the user begin with one of those records that are of an allowed type. Without any there is nothing
  /// to choose from.
  void offerKept(const std::vector<ConnectionConfig>& records);
  /// Shows an existing record on the page of its type. False for a type without a page.
  bool setConnection(const ConnectionConfig& record);
  /// What OK made; nothing before that, and after Cancel.
  [[nodiscard]] const std::optional<ConnectionConfig>& connection() const { return connection_; }
  /// For tests: how long the store has to answer.
  TConnectionTester& tester() { return tester_; }

  void accept() override;
  void done(int result) override;

 private:
  void makePages();
  QWidget* makeHelp();
  QWidget* makeKeptRow();
  void takeKept(int place);
  QWidget* makeTestRow();
  [[nodiscard]] TConnectionPage* page() const;
  std::optional<ConnectionConfig> readPage();
  void onPage();
  void bTestConnectionClick();
  void onTested(bool reached, const QString& message);
  void showResult(const QString& message);

  TWindowContext& context_;
  TConnectionTester tester_;
  QTabWidget* pages_;
  QSplitter* splitter_;
  QWidget* keptRow_ = nullptr;
  QComboBox* keptBox_ = nullptr;
  std::vector<ConnectionConfig> kept_;
  QTextEdit* help_ = nullptr;
  QPushButton* bTest_ = nullptr;
  QLabel* result_ = nullptr;
  std::vector<TConnectionPage*> all_;
  std::optional<ConnectionConfig> connection_;
};

}  // namespace hollowmere
