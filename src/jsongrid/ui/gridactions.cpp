#include "jsongrid/ui/gridactions.h"

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QFileDialog>
#include <QFileInfo>
#include <QMenu>
#include <QPrinter>
#include <QWidget>
#include <array>
#include <atomic>

#include "jsongrid/celltext.h"
#include "jsongrid/exportxlsx.h"
#include "jsongrid/ui/gridpainter.h"
#include "ui/icons.h"
#include "ui/printing.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

/// Pages are drawn for a preview on the main thread, all of them.
constexpr std::size_t previewedRows = 20'000;

enum class TFileForm { Text, Spreadsheet, Pdf };

}  // namespace

/// One entry of the export menu. A dialog offers its forms as file filters.
struct TGridActions::TKindOfFile {
  const char* name;
  QString caption;
  const char* extension;
  TFileForm form;
  std::vector<std::pair<QString, TTextFormat>> filters;
};

TGridActions::TGridActions(TWindowContext& context, QWidget& window, TSource source)
    : QObject(&window),
      context_(context),
      window_(window),
      source_(std::move(source)),
      exportMenu_(new QMenu(tr("&Export Grid Data"), &window)),
      copyMenu_(new QMenu(tr("Copy &As"), &window)) {
  exportMenu_->setObjectName(QStringLiteral("exportMenu"));
  exportMenu_->setIcon(themeIcon("document-save-as"));
  copyMenu_->setObjectName(QStringLiteral("copyMenu"));
  makeExports();
  makeCopies();
  print_ = make("actPrint", tr("&Print"), "document-print", [this] { printAll(); });
  preview_ = make("actPrintPreview", tr("Print Pre&view"), "", [this] { previewAll(); });
}

QAction* TGridActions::make(const char* name, const QString& caption, const char* icon,
                            std::function<void()> call) {
  auto* action = new QAction(*icon ? themeIcon(icon) : QIcon(), caption, this);
  action->setObjectName(QLatin1String(name));
  connect(action, &QAction::triggered, this, std::move(call));
  return action;
}

void TGridActions::makeExports() {
  const std::array kinds{
      TKindOfFile{"actExportText",
                  tr("&Text"),
                  "txt",
                  TFileForm::Text,
                  {{tr("Text in columns (*.txt)"), TTextFormat::Aligned},
                   {tr("Tab-separated text (*.txt *.tsv)"), TTextFormat::Tabbed}}},
      TKindOfFile{"actExportExcel",
                  tr("&Excel"),
                  "xlsx",
                  TFileForm::Spreadsheet,
                  {{tr("Spreadsheet (*.xlsx)"), TTextFormat::Csv}}},
      TKindOfFile{"actExportHtml",
                  tr("&HTML"),
                  "html",
                  TFileForm::Text,
                  {{tr("HTML page (*.html)"), TTextFormat::Html}}},
      TKindOfFile{
          "actExportXml", tr("&XML"), "xml", TFileForm::Text, {{tr("XML (*.xml)"), TTextFormat::Xml}}},
      TKindOfFile{
          "actExportPdf", tr("&PDF"), "pdf", TFileForm::Pdf, {{tr("PDF (*.pdf)"), TTextFormat::Html}}},
      TKindOfFile{"actExportJson",
                  tr("&JSON"),
                  "json",
                  TFileForm::Text,
                  {{tr("One document per line (*.json)"), TTextFormat::JsonLines},
                   {tr("List of documents (*.json)"), TTextFormat::JsonList}}},
      TKindOfFile{"actExportCsv",
                  tr("&CSV"),
                  "csv",
                  TFileForm::Text,
                  {{tr("CSV, values as they are (*.csv)"), TTextFormat::Csv},
                   {tr("CSV for spreadsheets, no formulas (*.csv)"), TTextFormat::CsvGuarded}}}};
  for (const TKindOfFile& kind : kinds)
    exportMenu_->addAction(make(kind.name, kind.caption, "", [this, kind] { exportAs(kind); }));
}

void TGridActions::makeCopies() {
  const auto all = [this](TTextFormat format) {
    return [this, format] { copy(source_.all().get(), format, true); };
  };
  const auto selected = [this](TTextFormat format) {
    return [this, format] { copy(source_.selected().get(), format, true); };
  };
  copySelected_ = make("actCopySelected", tr("&Copy Selected"), "edit-copy",
                       [this] { copyCells(source_.selected().get()); });
  copyAll_ = make("actCopyAll", tr("Copy A&ll"), "", all(TTextFormat::Tabbed));
  copyMenu_->addAction(make("actCopySelectedCsv", tr("Selected As &CSV"), "", selected(TTextFormat::Csv)));
  copyMenu_->addAction(
      make("actCopySelectedJson", tr("Selected As &JSON"), "", selected(TTextFormat::JsonList)));
  copyMenu_->addAction(make("actCopyAllCsv", tr("All As C&SV"), "", all(TTextFormat::Csv)));
  copyMenu_->addAction(make("actCopyAllJson", tr("All As JS&ON"), "", all(TTextFormat::JsonList)));
}

/// Runs on a thread, tells how far it is, and shows what goes wrong. False: it failed or was stopped.
bool TGridActions::work(const QString& caption, std::size_t rows,
                        const std::function<bool(const TExportWatch&)>& call) {
  TStopFlag stop;
  std::atomic<std::size_t> done = 0;
  const TExportWatch watch{[&done](std::size_t count) { done = count; }, &stop};
  const auto status = [&] {
    return tr("%1 of %2 rows").arg(static_cast<qulonglong>(done)).arg(static_cast<qulonglong>(rows));
  };
  bool whole = false;
  try {
    runWithWaitDialog(
        caption, [&] { whole = call(watch); }, stop, status);
  } catch (const std::exception& error) {
    context_.prompt.error(error.what());
  }
  return whole;
}

void TGridActions::exportAs(const TKindOfFile& kind) {
  QStringList filters;
  for (const auto& filter : kind.filters) filters.append(filter.first);
  QFileDialog dialog(&window_, tr("Export Grid Data"), {}, filters.join(QLatin1String(";;")));
  dialog.setObjectName(QStringLiteral("QFileDialog"));
  dialog.setAcceptMode(QFileDialog::AcceptSave);
  dialog.setDefaultSuffix(QLatin1String(kind.extension));
  if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty()) return;
  const auto table = source_.all();
  const qsizetype filter = filters.indexOf(dialog.selectedNameFilter());
  write(*table, dialog.selectedFiles().constFirst(), kind, static_cast<int>(std::max<qsizetype>(filter, 0)));
}

bool TGridActions::write(const TGridTable& table, const QString& fileName, const TKindOfFile& kind,
                         int filter) {
  const std::string path = fileName.toStdString();
  const QString title = source_.title();
  const TTextFormat format = kind.filters[static_cast<std::size_t>(filter)].second;
  const QPageLayout page = kind.form == TFileForm::Pdf ? printedPage(context_) : QPageLayout();
  return work(tr("Exporting to %1...").arg(QFileInfo(fileName).fileName()), table.rows(),
              [&](const TExportWatch& watch) {
                switch (kind.form) {
                  case TFileForm::Spreadsheet: return exportSpreadsheet(table, context_.files, path, watch);
                  case TFileForm::Pdf: return exportPdf(table, context_.files, path, title, page, watch);
                  case TFileForm::Text: break;
                }
                return exportText(table, format, context_.files, path, title.toStdString(), watch);
              });
}

void TGridActions::copy(const TGridTable* table, TTextFormat format, bool captions) {
  if (!table) return;
  QString copied;
  const bool whole = work(tr("Copying..."), table->rows(), [&](const TExportWatch& watch) {
    std::string all;
    if (!copyText(*table, format, captions, watch, all)) return false;
    copied = QString::fromStdString(all);
    return true;
  });
  if (whole) QApplication::clipboard()->setText(copied);
}

/// A single cell as it is; several as a part of a spreadsheet takes them.
void TGridActions::copyCells(const TGridTable* table) {
  if (!table) return;
  if (table->rows() == 1 && table->columns() == 1)
    return QApplication::clipboard()->setText(QString::fromStdString(cellText(table->cell(0, 0))));
  copy(table, TTextFormat::Tabbed, false);
}

/// What the user has stopped is no fault of the printer.
bool TGridActions::paint(const TGridTable& table, QPrinter& printer) {
  bool drawn = false, stopped = false;
  work(tr("Printing..."), table.rows(), [&](const TExportWatch& watch) {
    drawn = TGridPainter(table, source_.title()).paint(printer, watch);
    stopped = watch.stopped();
    return drawn;
  });
  if (stopped) printer.abort();
  return drawn || stopped;
}

void TGridActions::printAll() {
  const auto table = source_.all();
  printPages(
      context_, &window_, [&](QPrinter& printer) { return paint(*table, printer); }, source_.title());
}

void TGridActions::previewAll() {
  const auto table = source_.all();
  if (table->rows() > previewedRows &&
      !context_.prompt.confirm(
          text("A preview of %1 rows takes much time and memory. Are you sure to show it?")
              .arg(table->rows())
              .toStdString()))
    return;
  previewPages(
      context_, &window_,
      [&](QPrinter& printer) { return TGridPainter(*table, source_.title()).paint(printer, {}); },
      source_.title());
}

}  // namespace hollowmere
