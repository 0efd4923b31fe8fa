#include "ui/printing.h"

#include <QCoreApplication>
#include <QFile>
#include <QPageLayout>
#include <QPageSetupDialog>
#include <QPrintDialog>
#include <QPrintPreviewDialog>
#include <QPrinter>
#include <QSettings>
#include <QTextDocument>

#include "ui/windowcontext.h"

namespace hollowmere {

namespace {

// The page setup in the settings store.
const QLatin1String groupName("printing");
const QLatin1String sizeKey("pageSize");
const QLatin1String widthKey("pageWidth"), heightKey("pageHeight");  // points, of a size without a name
const QLatin1String orientationKey("orientation");
const QLatin1String marginsKey("margins");  // left, top, right, bottom in millimetres

void savePage(QSettings& store, const QPageLayout& layout) {
  store.beginGroup(groupName);
  store.setValue(sizeKey, static_cast<int>(layout.pageSize().id()));
  store.setValue(widthKey, layout.pageSize().sizePoints().width());
  store.setValue(heightKey, layout.pageSize().sizePoints().height());
  store.setValue(orientationKey, static_cast<int>(layout.orientation()));
  const QMarginsF margins = layout.margins(QPageLayout::Millimeter);
  store.setValue(marginsKey, QVariantList{margins.left(), margins.top(), margins.right(), margins.bottom()});
  store.endGroup();
}

QPageSize storedSize(const QSettings& store) {
  const int id = store.value(sizeKey).toInt();
  if (id >= 0 && id <= QPageSize::LastPageSize && id != QPageSize::Custom)
    return QPageSize(static_cast<QPageSize::PageSizeId>(id));
  return QPageSize(QSize(store.value(widthKey).toInt(), store.value(heightKey).toInt()));
}

/// The page that the user has set, or the printer's own.
void restorePage(QSettings& store, QPrinter& printer) {
  store.beginGroup(groupName);
  const QVariantList sides = store.value(marginsKey).toList();
  const QPageSize size = storedSize(store);
  if (store.contains(sizeKey) && size.isValid()) {
    printer.setPageSize(size);
    const bool lying = store.value(orientationKey).toInt() == QPageLayout::Landscape;
    printer.setPageOrientation(lying ? QPageLayout::Landscape : QPageLayout::Portrait);
  }
  if (sides.size() == 4)
    printer.setPageMargins(
        {sides[0].toDouble(), sides[1].toDouble(), sides[2].toDouble(), sides[3].toDouble()},
        QPageLayout::Millimeter);
  store.endGroup();
}

void prepare(TWindowContext& context, QPrinter& printer, const QString& title) {
  printer.setDocName(title);
  printer.setCreator(QStringLiteral("Hollowmere"));
  restorePage(context.store, printer);
}

/// Painting on a file that cannot be written ends in silence, so that is found out beforehand.
bool print(QPrinter& printer, const TPaintPages& paint) {
  if (!printer.outputFileName().isEmpty() && !QFile(printer.outputFileName()).open(QIODevice::Append))
    return false;
  return paint(printer) && printer.printerState() != QPrinter::Error;
}

TPaintPages pagesOf(const QTextDocument& document) {
  return [&document](QPrinter& printer) {
    document.print(&printer);
    return true;
  };
}

}  // namespace

QPageLayout printedPage(TWindowContext& context) {
  QPrinter printer(QPrinter::HighResolution);
  prepare(context, printer, {});
  return printer.pageLayout();
}

void pageSetup(TWindowContext& context, QWidget* parent) {
  QPrinter printer(QPrinter::HighResolution);
  prepare(context, printer, {});
  QPageSetupDialog dialog(&printer, parent);
  dialog.setObjectName(QStringLiteral("pageSetupDialog"));
  if (dialog.exec() == QDialog::Accepted) savePage(context.store, printer.pageLayout());
}

bool printPages(TWindowContext& context, QWidget* parent, const TPaintPages& paint, const QString& title) {
  QPrinter printer(QPrinter::HighResolution);
  prepare(context, printer, title);
  QPrintDialog dialog(&printer, parent);
  dialog.setObjectName(QStringLiteral("printDialog"));
  if (dialog.exec() != QDialog::Accepted) return false;
  if (print(printer, paint)) return true;
  const QString where = printer.outputFileName().isEmpty() ? printer.printerName() : printer.outputFileName();
  context.prompt.error(
      QCoreApplication::translate("Messages", "Unable to print %1 to %2.").arg(title, where).toStdString());
  return false;
}

void previewPages(TWindowContext& context, QWidget* parent, const TPaintPages& paint, const QString& title) {
  QPrinter printer(QPrinter::HighResolution);
  prepare(context, printer, title);
  QPrintPreviewDialog dialog(&printer, parent);
  dialog.setObjectName(QStringLiteral("printPreviewDialog"));
  dialog.setWindowTitle(QCoreApplication::translate("Messages", "Print Preview - %1").arg(title));
  QObject::connect(&dialog, &QPrintPreviewDialog::paintRequested, &dialog,
                   [&paint](QPrinter* onto) { paint(*onto); });
  dialog.exec();
}

bool printDocument(TWindowContext& context, QWidget* parent, const QTextDocument& document,
                   const QString& title) {
  return printPages(context, parent, pagesOf(document), title);
}

void previewDocument(TWindowContext& context, QWidget* parent, const QTextDocument& document,
                     const QString& title) {
  previewPages(context, parent, pagesOf(document), title);
}

bool writePdf(TWindowContext& context, const QTextDocument& document, const QString& title,
              const QString& fileName) {
  QPrinter printer(QPrinter::HighResolution);
  prepare(context, printer, title);
  printer.setOutputFormat(QPrinter::PdfFormat);
  printer.setOutputFileName(fileName);
  return print(printer, pagesOf(document));
}

}  // namespace hollowmere
