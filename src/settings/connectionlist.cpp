#include "settings/connectionlist.h"

#include <QString>
#include <algorithm>
#include <cassert>

#include "json/json.h"

namespace hollowmere {

namespace {

/// The content is there but is no list of ours.
class TForeignList : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

QString unicode(std::string_view text) {
  return QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
}

TConnectionList listOf(const TValue& document) {
  const TValue* records = document.is(TKind::Object) ? document.asObject().find("connections") : nullptr;
  if (records == nullptr || !records->is(TKind::List)) throw TForeignList("It holds no connection list.");
  TConnectionList list;
  for (const TValue& record : records->asList()) {
    if (!record.is(TKind::Object)) throw TForeignList("It holds a connection that is not an object.");
    list.add(record.asObject());
  }
  return list;
}

/// Throws TFileError when the file cannot be read and TForeignList when it can, but is none of ours.
TConnectionList readList(const std::string& path, const TCipher& cipher) {
  const std::string enciphered = readWholeFile(path);
  try {
    return listOf(parseJson(cipher.decryptStream(enciphered)));
  } catch (const TCipherError& error) {
    throw TForeignList(error.what());
  } catch (const TJsonError&) {
    // The reader's own message could quote what it read.
    throw TForeignList("It holds no JSON text.");
  }
}

}  // namespace

bool TConnectionList::connListFind(std::string_view recordText) const {
  const QString sought = unicode(recordText);
  return std::ranges::any_of(records_, [&sought](const ConnectionConfig& record) {
    return unicode(toJson(record)).compare(sought, Qt::CaseInsensitive) == 0;
  });
}

void TConnectionList::replace(std::size_t place, ConnectionConfig record) {
  assert(place < records_.size());
  records_[place] = std::move(record);
}

void TConnectionList::remove(std::size_t place) {
  assert(place < records_.size());
  records_.erase(records_.begin() + static_cast<std::ptrdiff_t>(place));
}

TConnectionList TConnectionListFile::load() const {
  const auto failed = [this](const std::exception& error) {
    return TConnectionListError("Failed to load database connection list from " + path_, error.what());
  };
  try {
    return fileExists(path_) ? readList(path_, cipher_) : TConnectionList();
  } catch (const TFileError& error) {
    throw failed(error);
  } catch (const TForeignList& error) {
    throw failed(error);
  }
}

std::optional<std::string> TConnectionListFile::keepForeignFile() const {
  try {
    if (fileExists(path_)) static_cast<void>(readList(path_, cipher_));
  } catch (const TForeignList&) {
    return moveAside(path_);
  }
  return std::nullopt;
}

std::optional<std::string> TConnectionListFile::save(const TConnectionList& list) const {
  TObject document;
  TList& records = document.addNull("connections").value.makeList();
  for (const ConnectionConfig& record : list.records()) records.emplace_back(record);
  try {
    auto kept = keepForeignFile();
    writeWholeFile(files_, path_, cipher_.encryptStream(toJson(document)));
    return kept;
  } catch (const TFileError& error) {
    throw TConnectionListError("Failed to save database connection list to " + path_, error.what());
  }
}

bool offerToKeep(TConnectionList& list, const TConnectionListFile& file, const ConnectionConfig& record,
                 TPrompt& prompt) {
  if (list.connListFind(toJson(record))) return false;
  if (!prompt.confirm("Would you like to save this database connection for future use?")) return false;
  list.add(record);
  try {
    file.save(list);
  } catch (const TConnectionListError& error) {
    prompt.error(error.what());
  }
  return true;
}

}  // namespace hollowmere
