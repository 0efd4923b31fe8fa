#include "jsongrid/ui/jsonwindow.h"

#include <QFileInfo>

#include "jsongrid/documentlist.h"
#include "jsongrid/ui/frmjson.h"
#include "ui/windowcontext.h"

namespace hollowmere {

std::optional<TList> editJsonDocuments(TWindowContext& context, QWidget* parent, TList documents,
                                       const TJsonWindowOptions& options) {
  TfrmJSON window(context, std::move(documents), options, parent);
  if (window.exec() != QDialog::Accepted || options.readOnly) return std::nullopt;
  return window.takeDocuments();
}

bool editJsonFile(TWindowContext& context, QWidget* parent, const QString& fileName,
                  const TJsonWindowOptions& options) {
  auto read = readJsonFile(context, fileName);
  if (!read) return false;
  TJsonWindowOptions named = options;
  if (named.title.isEmpty())
    named.title = TfrmJSON::tr("JSON Documents - %1").arg(QFileInfo(fileName).fileName());
  TfrmJSON window(context, std::move(read->documents), named, parent);
  if (window.exec() != QDialog::Accepted || options.readOnly || !window.changed()) return false;
  try {
    writeDocuments(context.files, fileName.toStdString(), window.takeDocuments(), read->form);
    return true;
  } catch (const std::exception& error) {
    context.prompt.error(error.what());
    return false;
  }
}

}  // namespace hollowmere
