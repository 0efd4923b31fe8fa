#include "connectors/hbase/hbasequery.h"

#include "connectors/hbase/hbasefiltertext.h"
#include "connectors/nosqlcommon.h"

namespace hollowmere {

namespace {

constexpr char invalidFilter[] = "Invalid filter expression.";

bool startsName(char c) { return c == '_' || c == '$' || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool continuesName(char c) { return startsName(c) || c == '.' || c == '#' || (c >= '0' && c <= '9'); }

/// Behind the name that begins there. A colon belongs to it when more of the name follows.
std::size_t nameEnd(std::string_view text, std::size_t at) {
  if (at >= text.size() || !startsName(text[at])) return at;
  while (at < text.size() && (continuesName(text[at]) ||
                              (text[at] == ':' && at + 1 < text.size() && continuesName(text[at + 1]))))
    ++at;
  return at;
}

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
    if (c != ' ') last_ = c;
    out_ += c;
    ++at_;
  }

  /// The name of the parameter whose colon stands there, and where it ends; empty when there is none.
  [[nodiscard]] std::string nameAt(std::size_t colon, std::size_t& end) const {
    if (colon + 1 < text_.size() && text_[colon + 1] == '"') {
      const std::size_t close = text_.find('"', colon + 2);
      if (close == std::string_view::npos) return {};
      end = close + 1;
      return std::string(text_.substr(colon + 2, close - colon - 2));
    }
    end = nameEnd(text_, colon + 1);
    return std::string(text_.substr(colon + 1, end - colon - 1));
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
    else if (takesNumber())
      out_ += value.find_first_not_of("-0123456789") == std::string::npos && !value.empty()
                  ? value
                  : "'" + doubled(value) + "'";
    else
      out_ += "'" + doubled(value) + "'";
    last_ = '\'';
  }

  /// Whether the filter whose arguments these are takes numbers only.
  [[nodiscard]] bool takesNumber() const {
    const std::size_t open = out_.rfind('(');
    const std::string_view before = std::string_view(out_).substr(0, open == std::string::npos ? 0 : open);
    for (const std::string_view name :
         {"PageFilter", "ColumnCountGetFilter", "ColumnPaginationFilter", "TimestampsFilter"})
      if (before.ends_with(name)) return true;
    return false;
  }

  void bindQuoted() {
    const std::size_t close = closingQuote();
    const std::size_t begin = at_ + 1;
    std::size_t from = begin;
    bool regex = false;
    for (const std::string_view type : {"binary:", "binaryprefix:", "regexstring:", "substring:"})
      if (text_.substr(begin, close - begin).starts_with(type)) {
        from = begin + type.size();
        regex = type == "regexstring:";
      }
    out_ += text_.substr(at_, from - at_);
    for (at_ = from; at_ < close;) {
      std::size_t end = at_;
      const std::string name = text_[at_] == ':' ? nameAt(at_, end) : std::string();
      const bool whole = at_ == from && end == close;
      if (!name.empty() && end <= close && (whole || text_[at_ + 1] == '"')) {
        const std::string value = valueOf(name);
        out_ += doubled(regex ? escapedForRegex(value) : value);
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
  char last_ = ' ';         ///< the last sign that was no blank
  char beforeComma_ = ' ';  ///< the one before it, when it is a comma
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
  if (filter.empty()) return {table, {}, {}, {}};
  try {
    const THBaseKeyLimits limits = keyLimits(parseHBaseFilter(filter));
    return {table, filter, limits.from, limits.before};
  } catch (const THBaseFilterError& error) {
    throw TStoreError(kind, invalidFilter, error.what());
  }
}

std::string refusedFilterText(const std::string& filter) {
  const std::string unknown = unknownFilterName(parseHBaseFilter(filter));
  const std::string why = unknown.empty() ? "The server refused it without giving a reason: " + filter
                                          : "The server does not know the filter " + unknown + ".";
  return invalidFilter + (" " + why);
}

}  // namespace hollowmere
