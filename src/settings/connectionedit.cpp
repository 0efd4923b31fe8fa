#include "settings/connectionedit.h"

#include <QString>
#include <algorithm>

#include "json/json.h"

namespace hollowmere {

TConnectionEdit::TConnectionEdit(TConnectionListFile file, TPrompt& prompt)
    : file_(std::move(file)), prompt_(prompt) {
  try {
    list_ = file_.load();
    if (fileExists(file_.path())) saved_ = list_;
  } catch (const TConnectionListError& error) {
    prompt_.error(error.what());
  }
}

bool TConnectionEdit::needsSaving() const {
  if (saved_) return *saved_ != list_;
  return !list_.records().empty() || !fileExists(file_.path());
}

bool TConnectionEdit::close() {
  if (!needsSaving()) return true;
  try {
    const auto kept = file_.save(list_);
    saved_ = list_;
    if (kept)
      prompt_.ask(TPromptKind::Information, "The file that could not be loaded was kept as " + *kept,
                  TButtons::Ok);
    return true;
  } catch (const TConnectionListError& error) {
    prompt_.error(error.what());
  }
  return prompt_.confirm("Would you like to close the connection list without saving it?");
}

bool TConnectionEdit::offerToKeep(const ConnectionConfig& record) {
  const bool kept = hollowmere::offerToKeep(list_, file_, record, prompt_);
  // Whether the file took it is not told; close() compares with what stands there then.
  if (kept) {
    try {
      saved_ = file_.load();
    } catch (const TConnectionListError&) {
      saved_.reset();
    }
  }
  return kept;
}

TConnectionRow shownRow(const ConnectionConfig& record) {
  TConnectionRow row = connectionRow(record);
  row.back() = toJson(maskSecrets(record));
  return row;
}

bool rowMatches(const TConnectionRow& shown, const std::string& sought) {
  const QString text = QString::fromStdString(sought);
  return std::ranges::any_of(shown, [&](const std::string& cell) {
    return QString::fromStdString(cell).contains(text, Qt::CaseInsensitive);
  });
}

}  // namespace hollowmere
