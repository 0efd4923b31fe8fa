#include "connectors/hbase/hbaserow.h"

#include <stdexcept>

#include "connectors/markers.h"
#include "connectors/nosqlcommon.h"
#include "json/encoding.h"

namespace hollowmere {

namespace {

constexpr std::size_t longestKey = 32767;

void addMember(TObject& document, std::string_view name, const std::string& bytes) {
  TValue& value = document.addNull(name).value;
  if (isPlainText(bytes))
    value.makeText(bytes);
  else
    value = TValue::binary(bytes);
}

std::string decoded(const std::string& text) {
  auto bytes = fromBase64(std::string_view(text).substr(binaryMarker.size()));
  if (!bytes) throw std::runtime_error("what follows &base64; is no Base64");
  return std::move(*bytes);
}

/// Of a member's name: nothing is decoded in the usual case, so that no copy is made.
std::string_view columnBytes(const std::string& name, std::string& storage) {
  if (!hasBinaryMarker(name)) return name;
  return storage = decoded(name);
}

constexpr std::string_view quoteMarker = "&quot;", textMarker = "&str;";

/// What a text's markers mean. Not the shared conversion: that takes blanks away, which are bytes here.
std::string withoutMarkers(std::string_view text) {
  std::string out;
  out.reserve(text.size());
  while (!text.empty()) {
    const bool quote = text.starts_with(quoteMarker);
    const bool mark = text.starts_with(textMarker);
    if (quote) out += '"';
    if (!quote && !mark) out += text.front();
    text.remove_prefix(quote ? quoteMarker.size() : mark ? textMarker.size() : 1);
  }
  return out;
}

/// The usual case is found without a copy.
std::string_view bytesOf(const TValue& value, std::string& storage) {
  if (value.is(TKind::Binary)) return value.asText();
  if (!value.is(TKind::Text)) return storage = textForm(value);
  const std::string& text = value.asText();
  if (text.find('&') == std::string::npos) return text;
  return storage = hasBinaryMarker(text) ? decoded(text) : withoutMarkers(text);
}

const TMember& keyMember(const TObject& document) {
  for (const TMember& member : document)
    if (member.name == rowKeyName) return member;
  const TMember* member = document.findIgnoringCase(rowKeyName);
  if (!member) throw std::runtime_error("rowkey value is not provided.");
  return *member;
}

void checkColumn(std::string_view column, const std::string& name) {
  const std::size_t colon = column.find(':');
  if (colon == std::string_view::npos || colon == 0)
    throw std::runtime_error("The column \"" + name + "\" is not of the form family:qualifier.");
}

void addColumn(const TMember& member, THBaseBatch& batch, std::string& name, std::string& value) {
  const std::string_view column = columnBytes(member.name, name);
  checkColumn(column, member.name);
  batch.put(column, bytesOf(member.value, value));
}

}  // namespace

TObject rowDocument(const THBaseRow& row) {
  TObject document;
  document.reserve(row.cells.size() + 1);
  addMember(document, rowKeyName, row.key);
  for (const THBaseCell& cell : row.cells)
    if (isPlainText(cell.column))
      addMember(document, cell.column, cell.value);
    else
      addMember(document, std::string(binaryMarker) + toBase64(cell.column), cell.value);
  return document;
}

void addDocument(const TObject& document, THBaseBatch& batch) {
  const TMember& key = keyMember(document);
  std::string storage, other;
  const std::string_view bytes = bytesOf(key.value, storage);
  if (bytes.empty()) throw std::runtime_error("rowkey value is not provided.");
  if (bytes.size() > longestKey)
    throw std::runtime_error("The row key is " + std::to_string(bytes.size()) +
                             " bytes long; HBase takes at most " + std::to_string(longestKey) + ".");
  if (document.size() == 1)
    throw std::runtime_error("The document has no column; HBase stores no row without one.");
  batch.beginRow(bytes);
  const TMember* at = nullptr;
  try {
    for (const TMember& member : document) {
      at = &member;
      if (at != &key) addColumn(member, batch, other, storage);
    }
  } catch (const std::runtime_error& error) {
    batch.dropRow();
    const std::string what = error.what();
    throw std::runtime_error(
        what.find(at->name) == std::string::npos ? "The value of \"" + at->name + "\": " + what : what);
  }
}

}  // namespace hollowmere
