#pragma once

#include <QPageLayout>
#include <QString>
#include <functional>

class QPrinter;
class QTextDocument;
class QWidget;

namespace hollowmere {

struct TWindowContext;

/// Asks for paper and margins, and keeps them for everything that the program prints from now on.
void pageSetup(TWindowContext& context, QWidget* parent);

/// The paper and margins that everything is printed on.
QPageLayout printedPage(TWindowContext& context);

/// Paints pages onto a printer, beginning with its first page. False: it could not, or was stopped.
using TPaintPages = std::function<bool(QPrinter& printer)>;

/// As printDocument() and previewDocument() below, of pages that the caller paints.
bool printPages(TWindowContext& context, QWidget* parent, const TPaintPages& paint, const QString& title);
void previewPages(TWindowContext& context, QWidget* parent, const TPaintPages& paint, const QString& title);

/// Asks for a printer (or a PDF file) and prints. False when the user has cancelled; a printer that fails is
/// reported to the prompt, which gives false, too.
bool printDocument(TWindowContext& context, QWidget* parent, const QTextDocument& document,
                   const QString& title);

/// Shows the pages as they would be printed; the window offers printing, too.
void previewDocument(TWindowContext& context, QWidget* parent, const QTextDocument& document,
                     const QString& title);

/// Writes the pages into a PDF file without asking. False when the file cannot be written.
bool writePdf(TWindowContext& context, const QTextDocument& document, const QString& title,
              const QString& fileName);

}  // namespace hollowmere
