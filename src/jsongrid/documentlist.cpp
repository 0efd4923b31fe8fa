#include "jsongrid/documentlist.h"

#include <algorithm>

#include "json/json.h"
#include "jsongrid/gridtexts.h"

namespace hollowmere {

namespace {

constexpr std::string_view byteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view blanks = " \t\r\n";

/// "reason (line 3, column 7)"; columns count characters.
std::string placed(const TJsonError& error, std::string_view text, std::size_t lineNumber = 1) {
  const std::string_view before = text.substr(0, error.offset());
  const std::size_t lineStart = before.rfind('\n') == std::string_view::npos ? 0 : before.rfind('\n') + 1;
  const auto isCharacter = [](char c) { return (static_cast<unsigned char>(c) & 0xC0) != 0x80; };
  const auto column =
      std::count_if(before.begin() + static_cast<std::ptrdiff_t>(lineStart), before.end(), isCharacter);
  const auto line = static_cast<std::size_t>(std::count(before.begin(), before.end(), '\n'));
  std::string reason = error.what();
  if (const auto at = reason.rfind(" at byte "); at != std::string::npos) reason.resize(at);
  return reason + " (line " + std::to_string(lineNumber + line) + ", column " + std::to_string(column + 1) +
         ")";
}

std::string_view lineAt(std::string_view text, std::size_t at) {
  const std::size_t end = text.find('\n', at);
  return text.substr(at, end == std::string_view::npos ? end : end - at);
}

bool isBlank(std::string_view line) { return line.find_first_not_of(blanks) == std::string_view::npos; }

bool isWhole(std::string_view line) {
  try {
    parseJson(line);
    return true;
  } catch (const TJsonError&) {
    return false;
  }
}

/// Whether the first line is a document and more than blanks follow it.
bool isByLines(std::string_view text) {
  const std::string_view first = lineAt(text, 0);
  return first.size() < text.size() && !isBlank(text.substr(first.size())) && isWhole(first);
}

TList parseLines(std::string_view text, const TStopFlag* stop) {
  TList documents;
  TJsonReader reader;
  std::size_t number = 0;
  for (std::size_t at = 0; at < text.size() && !(stop && stop->isSet());) {
    const std::string_view line = lineAt(text, at);
    at += line.size() + 1;
    ++number;
    if (isBlank(line)) continue;
    try {
      documents.push_back(reader.read(line));
    } catch (const TJsonError& error) {
      throw TDocumentTextError(placed(error, line, number));
    }
  }
  return documents;
}

}  // namespace

TDocumentTextError::TDocumentTextError(std::string detail)
    : std::runtime_error(gridtexts::invalidDocument), detail_(std::move(detail)) {}

TList parseDocuments(std::string_view text, const TStopFlag* stop, TDocumentForm* form) {
  TDocumentForm found = TDocumentForm::Lines;
  TDocumentForm& told = form ? *form : found;
  if (text.starts_with(byteOrderMark)) text.remove_prefix(byteOrderMark.size());
  const std::size_t start = text.find_first_not_of(blanks);
  if (start == std::string_view::npos) throw TDocumentTextError("the text is empty");
  told = TDocumentForm::Lines;
  if (isByLines(text.substr(start))) return parseLines(text, stop);
  try {
    TValue whole = parseJson(text);
    told = TDocumentForm::List;
    if (whole.is(TKind::List)) return std::move(whole.asList());
    if (!whole.is(TKind::Object)) throw TDocumentTextError("it is neither an object nor a list");
    told = TDocumentForm::One;
    TList one;
    one.push_back(std::move(whole));
    return one;
  } catch (const TJsonError& error) {
    throw TDocumentTextError(placed(error, text));
  }
}

TList readDocuments(const std::string& path, const TStopFlag* stop, TDocumentForm* form) {
  return parseDocuments(readWholeFile(path), stop, form);
}

void writeDocuments(TSafeFiles& files, const std::string& path, const TList& documents, TDocumentForm form) {
  constexpr std::size_t pieceBytes = 64 * 1024;
  if (form == TDocumentForm::One && documents.size() == 1)
    return writeWholeFile(files, path, toPrettyJson(documents[0]) + "\n");
  const bool lines = form == TDocumentForm::Lines;
  const auto file = files.create(path);
  std::string piece = lines ? "" : "[";
  for (std::size_t i = 0; i < documents.size(); ++i) {
    if (!lines) piece += i == 0 ? "\n" : ",\n";
    appendJson(piece, documents[i]);
    if (lines) piece += '\n';
    if (piece.size() < pieceBytes) continue;
    file->write(piece);
    piece.clear();
  }
  file->write(piece + (lines ? "" : "\n]\n"));
  file->commit();
}

}  // namespace hollowmere
