#pragma once

#include <QString>
#include <optional>
#include <string>

#include "json/value.h"

class QWidget;

namespace hollowmere {

struct TWindowContext;

/// How the document window is opened.
struct TViewJsonOptions {
  bool readOnly = false;
  QString title;  ///< empty: "View/Modify JSON Document"
};

/// Shows a document, an object or a list, in the modal window "View/Modify JSON Document". Gives the edited
/// document after OK and nothing after Cancel or when it is read only. Kinds that JSON text lacks are kept.
std::optional<TValue> viewJsonDocument(TWindowContext& context, QWidget* parent, TValue document,
                                       const TViewJsonOptions& options = {});

/// The same of a document's text, which comes back compact. A text that is no JSON document is reported with
/// "Invalid JSON document.", and nothing is shown.
std::optional<std::string> viewJsonText(TWindowContext& context, QWidget* parent, const std::string& text,
                                        const TViewJsonOptions& options = {});

/// Shows a JSON file; OK writes the changed document into it again. False when there was none to be shown
/// (the user has been told) or nothing was changed.
bool viewJsonFile(TWindowContext& context, QWidget* parent, const QString& fileName,
                  const TViewJsonOptions& options = {});

}  // namespace hollowmere
