#include "jsondoc/ui/viewjson.h"

#include <QCoreApplication>
#include <QFileInfo>

#include "connectors/loadtypes.h"
#include "json/json.h"
#include "jsondoc/jsontext.h"
#include "jsondoc/ui/frmviewjson.h"
#include "ui/qtmainthread.h"

namespace hollowmere {

namespace {

/// Texts above that are read beside the windows.
constexpr std::size_t quickBytes = 1024 * 1024;

/// Nothing when it is none, which the user has been told, or when reading was stopped.
std::optional<TValue> readShown(TWindowContext& context, const std::string& text) {
  TJsonReading reading;
  TStopFlag stop;
  const auto read = [&] { reading = readDocument(text); };
  if (text.size() > quickBytes)
    runWithWaitDialog(QCoreApplication::translate("Messages", "Reading the document..."), read, stop);
  else
    read();
  if (stop.isSet()) return std::nullopt;
  if (!reading.document) context.prompt.error(reading.fault.message());
  return std::move(reading.document);
}

}  // namespace

std::optional<TValue> viewJsonDocument(TWindowContext& context, QWidget* parent, TValue document,
                                       const TViewJsonOptions& options) {
  if (!document.isNested()) {
    context.prompt.error(invalidDocument);
    return std::nullopt;
  }
  TfrmViewJSON window(context, std::move(document), options, parent);
  if (window.exec() != QDialog::Accepted) return std::nullopt;
  return window.takeDocument();
}

std::optional<std::string> viewJsonText(TWindowContext& context, QWidget* parent, const std::string& text,
                                        const TViewJsonOptions& options) {
  auto document = readShown(context, text);
  if (!document) return std::nullopt;
  const auto edited = viewJsonDocument(context, parent, std::move(*document), options);
  return edited ? std::optional(toJson(*edited)) : std::nullopt;
}

bool viewJsonFile(TWindowContext& context, QWidget* parent, const QString& fileName,
                  const TViewJsonOptions& options) {
  try {
    auto document = readShown(context, readWholeFile(fileName.toStdString()));
    if (!document) return false;
    TfrmViewJSON window(context, std::move(*document), options, parent);
    window.setWindowTitle(window.windowTitle() + QLatin1String(" - ") + QFileInfo(fileName).fileName());
    if (window.exec() != QDialog::Accepted || !window.isChanged()) return false;
    writeWholeFile(context.files, fileName.toStdString(), toPrettyJson(window.takeDocument()) + "\n");
    return true;
  } catch (const TFileError& error) {
    context.prompt.error(error.what());
    return false;
  }
}

}  // namespace hollowmere
