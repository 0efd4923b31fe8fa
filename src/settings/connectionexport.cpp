#include "settings/connectionexport.h"

#include <algorithm>

#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

constexpr std::size_t shortestPhrase = 8;
constexpr int sealedVersion = 1;

TObject documentOf(const TConnectionList& list) {
  TObject document;
  TList& records = document.addNull("connections").value.makeList();
  for (const ConnectionConfig& record : list.records()) records.emplace_back(record);
  return document;
}

[[noreturn]] void failForeign() { throw TConnectionExportError("The file holds no exported connections."); }

/// The whole file, one of the two forms.
TObject readDocument(std::string_view bytes) {
  try {
    TValue document = parseJson(bytes);
    if (document.is(TKind::Object) &&
        (document.asObject().contains("connections") || document.asObject().contains("sealed")))
      return std::move(document.asObject());
  } catch (const TJsonError&) {
    // The reader's own message could quote what it read.
  }
  failForeign();
}

std::string bytesOf(const TObject& document, std::string_view member) {
  const TValue* value = document.find(member);
  const auto bytes = value != nullptr && value->is(TKind::Text) ? fromBase64(value->asText()) : std::nullopt;
  if (!bytes || bytes->empty())
    throw TConnectionExportError("The file is damaged: its member \"" + std::string(member) +
                                 "\" cannot be read.");
  return *bytes;
}

TObject unseal(const TObject& document, std::string_view passPhrase) {
  if (*document.find("sealed") != TValue(sealedVersion))
    throw TConnectionExportError("The file was exported by a newer version of the program.");
  const std::string salt = bytesOf(document, "salt");
  const std::string content = bytesOf(document, "content");
  try {
    return readDocument(TCipher::underPassPhrase(passPhrase, salt).decryptStream(content));
  } catch (const TCipherError&) {
    throw TConnectionExportError("The pass phrase is wrong, or the file is damaged.");
  }
}

bool isKnown(const TValue& record) {
  const TValue* type = record.is(TKind::Object) ? record.asObject().find("dbtype") : nullptr;
  return type != nullptr && type->is(TKind::Text) && findConnectionType(type->asText()) != nullptr;
}

TConnectionList listOf(const TObject& document) {
  const TValue* records = document.find("connections");
  if (records == nullptr || !records->is(TKind::List)) failForeign();
  TConnectionList list;
  for (const TValue& record : records->asList()) {
    if (!isKnown(record))
      throw TConnectionExportError("Connection " + std::to_string(list.records().size() + 1) +
                                   " of the file is of no database type that this program knows.");
    list.add(record.asObject());
  }
  return list;
}

bool holdsWithSecrets(const TConnectionList& list, const ConnectionConfig& record) {
  const TValue bare(record);
  if (withoutSecrets(bare) != bare) return false;
  return std::ranges::any_of(
      list.records(), [&bare](const ConnectionConfig& known) { return withoutSecrets(known) == bare; });
}

}  // namespace

std::string exportConnections(const TConnectionList& list) {
  return toPrettyJson(withoutSecrets(documentOf(list))) + "\n";
}

std::string exportConnections(const TConnectionList& list, std::string_view passPhrase) {
  const std::string salt = TCipher::newSalt();
  const std::string content =
      TCipher::underPassPhrase(passPhrase, salt).encryptStream(toJson(documentOf(list)));
  return toPrettyJson(
             TObject{{"sealed", sealedVersion}, {"salt", toBase64(salt)}, {"content", toBase64(content)}}) +
         "\n";
}

bool isSealedExport(std::string_view bytes) { return readDocument(bytes).contains("sealed"); }

TConnectionList importConnections(std::string_view bytes, std::string_view passPhrase) {
  const TObject document = readDocument(bytes);
  return listOf(document.contains("sealed") ? unseal(document, passPhrase) : document);
}

std::size_t addMissing(TConnectionList& list, const TConnectionList& imported) {
  const std::size_t before = list.records().size();
  for (const ConnectionConfig& record : imported.records())
    if (!list.connListFind(toJson(record)) && !holdsWithSecrets(list, record)) list.add(record);
  return list.records().size() - before;
}

std::string importSummary(std::size_t added, std::size_t of) {
  std::string text = "Connections imported: " + std::to_string(added) + ".";
  if (added < of) text += " Already in the list: " + std::to_string(of - added) + ".";
  return text;
}

std::string checkPassPhrase(std::string_view phrase, std::string_view again) {
  if (phrase.empty()) return "Please type a pass phrase.";
  if (phrase.size() < shortestPhrase)
    return "Please type a pass phrase of at least " + std::to_string(shortestPhrase) + " characters.";
  return phrase == again ? "" : "The two pass phrases differ.";
}

}  // namespace hollowmere
