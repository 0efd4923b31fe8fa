#pragma once

#include <optional>
#include <string>
#include <vector>

#include "settings/connectionlist.h"
#include "settings/prompt.h"

namespace hollowmere {

/// The connection list while a window shows it: changes stay in memory until close(). Prompt, cipher and
/// files of the list's file outlive it. Main thread.
class TConnectionEdit {
 public:
  /// Loads the list; one that cannot be loaded is reported, and the edit begins with an empty one.
  TConnectionEdit(TConnectionListFile file, TPrompt& prompt);

  [[nodiscard]] const TConnectionList& list() const { return list_; }
  /// To change it.
  TConnectionList& list() { return list_; }

  /// Saves the list, unless the file holds it already or holds what could not be loaded while the list is
  /// still empty. A file that could not be loaded is kept under another name, which is told. False when the
  /// list could not be saved and the user does not want to lose the changes.
  bool close();
  /// As the free function of that name, which saves at once.
  bool offerToKeep(const ConnectionConfig& record);

 private:
  [[nodiscard]] bool needsSaving() const;

  TConnectionListFile file_;
  TPrompt& prompt_;
  TConnectionList list_;
  std::optional<TConnectionList> saved_;  ///< what the file holds, once it is known
};

/// The cells of a row as they are shown: of the texts of connectionRow() the last with masked passwords.
TConnectionRow shownRow(const ConnectionConfig& record);
/// Whether a row has the sought text in one of its shown cells, letter case ignored. Passwords are not
/// searched: a hit would give them away letter by letter.
bool rowMatches(const TConnectionRow& shown, const std::string& sought);

}  // namespace hollowmere
