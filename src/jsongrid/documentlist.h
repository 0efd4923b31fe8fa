#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

#include "connectors/loadtypes.h"
#include "json/value.h"
#include "settings/safefile.h"

namespace hollowmere {

/// A text that holds no JSON documents. what() is the message for people, detail() says what is wrong and in
/// which line and column.
class TDocumentTextError : public std::runtime_error {
 public:
  explicit TDocumentTextError(std::string detail);
  [[nodiscard]] const std::string& detail() const { return detail_; }

 private:
  std::string detail_;
};

/// How documents stand in a text.
enum class TDocumentForm : std::uint8_t { List, One, Lines };

/// The documents of a text: the elements of a JSON list, one JSON object, or one value per line (empty lines
/// are passed over). A byte order mark is passed over. Throws TDocumentTextError. A set stop flag ends the
/// reading of lines early, with those read so far.
TList parseDocuments(std::string_view text, const TStopFlag* stop = nullptr, TDocumentForm* form = nullptr);

/// The documents of a file. Throws TFileError and TDocumentTextError.
TList readDocuments(const std::string& path, const TStopFlag* stop = nullptr, TDocumentForm* form = nullptr);

/// Replaces a file by documents in that form; several documents are a list at least. Throws TFileError.
void writeDocuments(TSafeFiles& files, const std::string& path, const TList& documents, TDocumentForm form);

}  // namespace hollowmere
