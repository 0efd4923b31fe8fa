#include "connectors/hbase/hbasequery.h"

#include "connectors/hbase/hbasefiltertext.h"
#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

constexpr char invalidFilter[] = "Invalid filter expression.";

std::string doubled(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (c == '\'') out += c;
    out += c;
  }
  return out;
}

/// A text that a regular expression takes letter for letter.
std::string escapedForRegex(std::string_view text) {
  std::string out;
  for (const char c : text) {
    if (std::string_view("\\^$.|?*+()[]{}").find(c) != std::string_view::npos) out += '\\';
    out += c;
  }
  return out;
}

class TFilterBinder {
 public:
  TFilterBinder(std::string_view text, const TObject& parent) : text_(text), parent_(parent) {}

  std::string bound() {
    while (at_ < text_.size()) {
      if (text_[at_] == '\'')
        bindQuoted();
      else if (text_[at_] == ':' && at_ + 1 < text_.size())
        bindBare();
      else
        pass(text_[at_]);
    }
    return std::move(out_);
  }

 private:
  void pass(char c) {
    if (c == ',') beforeComma_ = last_;
    if (c == ',') ++argument_;
    if (c == '(') {
      filterAt_ = wordBegin();
      filter_ = out_.substr(filterAt_, out_.find_last_not_of(' ') + 1 - filterAt_);
      argument_ = 0;
    }
    if (c != ' ') last_ = c;
    out_ += c;
    ++at_;
  }

  /// Of the word at the end.
  [[nodiscard]] std::size_t wordBegin() const {
    const std::size_t end = out_.find_last_not_of(' ');
    const std::size_t before = out_.find_last_of(" (", end);
    return end == std::string::npos ? out_.size() : before == std::string::npos ? 0 : before + 1;
  }

  /// The name of the parameter whose colon stands there, and where it ends; empty when there is none.
  [[nodiscard]] std::string nameAt(std::size_t colon, std::size_t& end) const {
    end = parameterEnd(text_, colon);
    if (end == colon) return {};
    const std::string_view name = text_.substr(colon + 1, end - colon - 1);
    return std::string(name.front() == '"' ? name.substr(1, name.size() - 2) : name);
  }

  [[nodiscard]] std::string valueOf(const std::string& name) const {
    const TMember* field = parent_.findIgnoringCase(name);
    if (!field)
      throw TStoreError(TStoreErrorKind::Read,
                        "The parent row has no field for the query parameter :" + name);
    if (field->value.isNested())
      throw TStoreError(TStoreErrorKind::Read,
                        "The value of the query parameter :" + name + " is a list or an object");
    // As it was read: no markers, bytes a binary.
    return field->value.is(TKind::Binary) ? field->value.asText() : textForm(field->value);
  }

  void bindBare() {
    std::size_t end = at_;
    const std::string name = nameAt(at_, end);
    if (name.empty()) return pass(':');
    const std::string value = valueOf(name);
    at_ = end;
    const bool compared =
        last_ == ',' && std::string_view("<>=").find(beforeComma_) != std::string_view::npos;
    if (compared)
      out_ += "'binary:" + doubled(value) + "'";
    else if (takesBare(filter_, argument_, value))
      out_ += value;
    else if (value.empty() && looksForBeginning())
      return matchNothing();
    else
      out_ += "'" + doubled(value) + "'";
    last_ = '\'';
  }

  [[nodiscard]] bool looksForBeginning() const { return filter_.ends_with("PrefixFilter"); }

  /// Puts a filter that no row passes into the place of the one whose argument stands here.
  void matchNothing() {
    while (at_ < text_.size() && text_[at_] != ')') at_ = text_[at_] == '\'' ? closingQuote() + 1 : at_ + 1;
    out_.resize(filterAt_);
    out_ += "RowFilter(=, 'binary:'";
  }

  void bindQuoted() {
    const std::size_t close = closingQuote();
    const std::size_t begin = at_ + 1;
    std::size_t from = begin;
    std::string_view type;
    for (const std::string_view one : {"binary:", "binaryprefix:", "regexstring:", "substring:"})
      if (text_.substr(begin, close - begin).starts_with(one)) type = one;
    from += type.size();
    const bool anyPasses = type.empty() ? looksForBeginning() : type != "binary:";
    out_ += text_.substr(at_, from - at_);
    for (at_ = from; at_ < close;) {
      std::size_t end = at_;
      const std::string name = text_[at_] == ':' ? nameAt(at_, end) : std::string();
      const bool whole = at_ == from && end == close;
      if (!name.empty() && end <= close && (whole || text_[at_ + 1] == '"')) {
        const std::string value = valueOf(name);
        if (whole && value.empty() && anyPasses) {
          at_ = close + 1;
          return matchNothing();
        }
        out_ += doubled(type == "regexstring:" ? escapedForRegex(value) : value);
        at_ = end;
      } else {
        out_ += text_[at_++];
      }
    }
    if (at_ < text_.size()) pass('\'');
    last_ = '\'';
  }

  /// Of the text that begins here, or the end of all.
  [[nodiscard]] std::size_t closingQuote() const {
    for (std::size_t at = at_ + 1; at < text_.size(); ++at) {
      if (text_[at] != '\'') continue;
      if (at + 1 == text_.size() || text_[at + 1] != '\'') return at;
      ++at;
    }
    return text_.size();
  }

  std::string_view text_;
  const TObject& parent_;
  std::string out_;
  std::size_t at_ = 0;
  std::size_t filterAt_ = 0;  ///< of the filter whose arguments are bound
  std::string filter_;        ///< its name
  std::size_t argument_ = 0;  ///< the one that stands here, from 0
  char last_ = ' ';           ///< the last sign that was no blank
  char beforeComma_ = ' ';    ///< the one before it, when it is a comma
};

}  // namespace

THBaseQuery::THBaseQuery(const TDataSource& source, TStoreErrorKind kind)
    : table(trimmedMember(source.definition, "table")),
      filter(NormalizeHBaseFilter(trimmedMember(source.definition, "query"))) {
  if (table.empty()) throw TStoreError(kind, "Data source " + source.name + " names no HBase table.");
}

std::string bindHBaseFilter(std::string_view filter, const TObject& parent) {
  return TFilterBinder(filter, parent).bound();
}

THBaseRange hbaseRange(const std::string& table, const std::string& filter, TStoreErrorKind kind) {
  if (filter.empty()) return {table, {}, {}, {}, true};
  try {
    const THBaseFilter parsed = parseHBaseFilter(filter);
    const THBaseKeyLimits limits = keyLimits(parsed);
    return {table, filter, limits.from, limits.before, judgesRowsAlone(parsed)};
  } catch (const THBaseFilterError& error) {
    throw TStoreError(kind, invalidFilter, error.what());
  }
}

std::string hbaseFilterFault(const TValue& definition) {
  const TValue* query = definition.is(TKind::Object) ? definition.asObject().find("query") : nullptr;
  const std::string trimmed = trimmedMember(definition, "query");
  if (!query || trimmed.empty()) return {};
  // The blanks before it count, so that the place is that of the text as it was written.
  const std::string before(query->asText().find(trimmed), ' ');
  try {
    parseHBaseFilter(before + NormalizeHBaseFilter(trimmed), TFilterParameters::Allowed);
  } catch (const THBaseFilterError& error) {
    return std::string(invalidFilter) + " " + error.what();
  }
  return {};
}

std::string refusedFilterText(const std::string& filter) {
  const std::string unknown = unknownFilterName(parseHBaseFilter(filter));
  const std::string why = unknown.empty() ? "The server refused it without giving a reason: " + filter
                                          : "The server does not know the filter " + unknown + ".";
  return invalidFilter + (" " + why);
}

}  // namespace hollowmere
