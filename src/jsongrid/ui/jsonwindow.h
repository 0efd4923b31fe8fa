#pragma once

#include <QString>
#include <functional>
#include <optional>

#include "json/value.h"

class QWidget;

namespace hollowmere {

struct TWindowContext;

/// How the grid editor for documents is opened.
struct TJsonWindowOptions {
  QString title;  ///< empty: "JSON Documents"
  bool readOnly = false;
  /// Saves documents as a new collection, telling the user itself. The window has the entry "As New
  /// Collection" only when its owner gives this.
  std::function<void(QWidget* parent, const TList& documents)> saveAsNewCollection = {};
};

/// Shows a list of documents as a grid in a modal window. Gives the edited rows after OK, those that were not
/// touched as they came; nothing after Cancel or when it is read only.
std::optional<TList> editJsonDocuments(TWindowContext& context, QWidget* parent, TList documents,
                                       const TJsonWindowOptions& options = {});

/// Shows the documents of a JSON file: a list, one document, or one document per line. OK writes changed ones
/// into the file again, in the form in which it had them. False when there was none to be shown (the user has
/// been told), or nothing was changed.
bool editJsonFile(TWindowContext& context, QWidget* parent, const QString& fileName,
                  const TJsonWindowOptions& options = {});

}  // namespace hollowmere
