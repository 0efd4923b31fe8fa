#include "connectors/jsonquery.h"

#include <string>

#include "connectors/storeerror.h"
#include "json/json.h"

namespace hollowmere {

namespace {

bool startsName(char c) { return c == '_' || c == '$' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool continuesName(char c) { return startsName(c) || c == '.' || c == '#' || (c >= '0' && c <= '9'); }

bool isBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\n'; }

std::size_t nameEnd(std::string_view text, std::size_t at) {
  if (at >= text.size() || !startsName(text[at])) return at;
  while (at < text.size() && continuesName(text[at])) ++at;
  return at;
}

/// The parameter's name when the text is one parameter as a whole, else nothing.
std::string_view parameterName(std::string_view text) {
  if (text.size() < 2 || text[0] != ':' || nameEnd(text, 1) != text.size()) return {};
  return text.substr(1);
}

/// Past the quoted text that begins at the given place.
std::size_t passQuoted(std::string_view text, std::size_t at) {
  for (++at; at < text.size() && text[at] != '"'; ++at)
    if (text[at] == '\\') ++at;
  return std::min(at + 1, text.size());
}

/// Puts quotes around bare parameters, so that the text is JSON. A colon that follows a quoted text
/// separates a name from its value; any other one outside of quotes begins a parameter.
std::string quoteParameters(std::string_view text) {
  std::string out;
  char before = 0;
  for (std::size_t at = 0; at < text.size();) {
    std::size_t end = at + 1;
    if (text[at] == '"') {
      end = passQuoted(text, at);
    } else if (text[at] == ':' && before != '"') {
      if (const std::size_t name = nameEnd(text, at + 1); name > at + 1) {
        out.append("\"").append(text.substr(at, name - at)).append("\"");
        before = '"';
        at = name;
        continue;
      }
    }
    if (!isBlank(text[at])) before = text[at];
    out += text.substr(at, end - at);
    at = end;
  }
  return out;
}

const TValue* findByPath(const TObject& object, std::string_view name) {
  if (const TMember* member = object.findIgnoringCase(name)) return &member->value;
  const std::size_t dot = name.find('.');
  if (dot == std::string_view::npos) return nullptr;
  const TMember* outer = object.findIgnoringCase(name.substr(0, dot));
  if (!outer || !outer->value.is(TKind::Object)) return nullptr;
  return findByPath(outer->value.asObject(), name.substr(dot + 1));
}

/// The first member in a value, at any depth, that a query would take for an operator.
const TMember* findOperator(const TValue& value) {
  if (value.is(TKind::List))
    for (const TValue& element : value.asList())
      if (const TMember* found = findOperator(element)) return found;
  if (value.is(TKind::Object))
    for (const TMember& member : value.asObject()) {
      if (member.name.starts_with('$')) return &member;
      if (const TMember* found = findOperator(member.value)) return found;
    }
  return nullptr;
}

const TValue& parameterValue(const TObject& parent, std::string_view name) {
  const TValue* field = findByPath(parent, name);
  if (!field)
    throw TStoreError(TStoreErrorKind::Read,
                      "The parent row has no field for the query parameter :" + std::string(name));
  if (const TMember* found = findOperator(*field))
    throw TStoreError(TStoreErrorKind::Read, "The value of the query parameter :" + std::string(name) +
                                                 " holds the operator " + found->name);
  return *field;
}

TObject bindObject(const TObject& object, const TObject& parent);

TValue bindValue(const TValue& value, const TObject& parent) {
  if (value.is(TKind::Object)) return bindObject(value.asObject(), parent);
  if (value.is(TKind::List)) {
    TList list;
    for (const TValue& element : value.asList()) list.push_back(bindValue(element, parent));
    return list;
  }
  if (!value.is(TKind::Text)) return value;
  const std::string_view name = parameterName(value.asText());
  if (name.empty()) return value;
  return parameterValue(parent, name);
}

using TConvertText = std::function<TValue(const std::string&, bool)>;

void convertTextsIn(TValue& value, bool inList, const TConvertText& convert) {
  if (value.is(TKind::Text) && parameterName(value.asText()).empty()) value = convert(value.asText(), inList);
  if (value.is(TKind::List))
    for (TValue& element : value.asList()) convertTextsIn(element, true, convert);
  if (value.is(TKind::Object))
    for (TMember& member : value.asObject()) convertTextsIn(member.value, false, convert);
}

TObject bindObject(const TObject& object, const TObject& parent) {
  TObject bound;
  bound.reserve(object.size());
  for (const TMember& member : object) bound.add(member.name, bindValue(member.value, parent));
  return bound;
}

}  // namespace

TJsonQuery::TJsonQuery(std::string_view text) {
  if (text.find_first_not_of(" \t\r\n") == std::string_view::npos) return;
  TValue value = parseJson(quoteParameters(text));
  if (!value.is(TKind::Object)) throw TJsonError("The query is not a JSON object", 0);
  query_ = std::move(value.asObject());
}

void TJsonQuery::convertTexts(const TConvertText& convert) {
  for (TMember& member : query_) convertTextsIn(member.value, false, convert);
}

TObject TJsonQuery::bind(const TObject& parent) const { return bindObject(query_, parent); }

}  // namespace hollowmere
