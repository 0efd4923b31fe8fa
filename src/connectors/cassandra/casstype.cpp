#include "connectors/cassandra/casstype.h"

#include <algorithm>
#include <array>
#include <utility>

namespace hollowmere {

namespace {

using TBase = TCassType::TBase;

struct TTypeName {
  std::string_view className;
  TBase base;
  std::string_view cql;
};

constexpr std::array<TTypeName, 28> typeNames{{
    {"AsciiType", TBase::Ascii, "ascii"},
    {"UTF8Type", TBase::Text, "text"},
    {"BytesType", TBase::Blob, "blob"},
    {"BooleanType", TBase::Boolean, "boolean"},
    {"ByteType", TBase::TinyInt, "tinyint"},
    {"ShortType", TBase::SmallInt, "smallint"},
    {"Int32Type", TBase::Int, "int"},
    {"LongType", TBase::BigInt, "bigint"},
    {"CounterColumnType", TBase::Counter, "counter"},
    {"IntegerType", TBase::Varint, "varint"},
    {"DecimalType", TBase::Decimal, "decimal"},
    {"FloatType", TBase::Float, "float"},
    {"DoubleType", TBase::Double, "double"},
    {"TimestampType", TBase::Timestamp, "timestamp"},
    {"DateType", TBase::Timestamp, "timestamp"},
    {"SimpleDateType", TBase::Date, "date"},
    {"TimeType", TBase::Time, "time"},
    {"DurationType", TBase::Duration, "duration"},
    {"UUIDType", TBase::Uuid, "uuid"},
    {"LexicalUUIDType", TBase::Uuid, "uuid"},
    {"TimeUUIDType", TBase::TimeUuid, "timeuuid"},
    {"InetAddressType", TBase::Inet, "inet"},
    {"ListType", TBase::List, "list"},
    {"SetType", TBase::Set, "set"},
    {"MapType", TBase::Map, "map"},
    {"TupleType", TBase::Tuple, "tuple"},
    {"UserType", TBase::User, "user type"},
    {"EmptyType", TBase::Unknown, "empty"},
}};

/// A name in hexadecimal digits.
std::string fromHex(std::string_view digits) {
  const auto value = [](char c) { return c <= '9' ? c - '0' : (c | 0x20) - 'a' + 10; };
  std::string text;
  for (std::size_t i = 0; i + 1 < digits.size(); i += 2)
    text += static_cast<char>(value(digits[i]) * 16 + value(digits[i + 1]));
  return text;
}

class TClassReader {
 public:
  explicit TClassReader(std::string_view text) : text_(text) {}

  // A type: Name, or Name(argument,...).
  TCassType type(int depth = 0) {
    const std::string_view full = word();
    const std::string_view name = full.substr(full.rfind('.') + 1);
    const bool arguments = take('(');
    TCassType made;
    if (depth < deepest && arguments && (name == "FrozenType" || name == "ReversedType")) {
      made = type(depth + 1);
      (name == "FrozenType" ? made.frozen : made.reversed) = true;
    } else {
      const auto* known = std::find_if(typeNames.begin(), typeNames.end(),
                                       [&](const TTypeName& t) { return t.className == name; });
      if (known != typeNames.end()) made.base = known->base;
      made.name = full;
      if (arguments && depth < deepest) parts(made, depth + 1);
      // A collection without its element is none.
      const bool single = made.base == TBase::List || made.base == TBase::Set;
      if (made.parts.size() < (made.base == TBase::Map ? 2U : single ? 1U : 0U)) made.base = TBase::Unknown;
    }
    if (arguments) close();
    return made;
  }

 private:
  static constexpr int deepest = 32;

  void parts(TCassType& made, int depth) {
    if (made.base == TBase::User) {
      // Keyspace, name, then name:type for each field; names in hexadecimal.
      word();
      take(',');
      made.name = fromHex(word());
      while (take(',')) {
        made.fields.push_back(fromHex(word()));
        take(':');
        made.parts.push_back(type(depth));
      }
      return;
    }
    if (made.base < TBase::List || made.base == TBase::Unknown) return;
    do made.parts.push_back(type(depth));
    while (take(','));
  }

  std::string_view word() {
    const std::size_t end = std::min(text_.find_first_of("(),: "), text_.size());
    const std::string_view found = text_.substr(0, end);
    text_.remove_prefix(end);
    return found;
  }

  bool take(char c) {
    while (text_.starts_with(' ')) text_.remove_prefix(1);
    if (!text_.starts_with(c)) return false;
    text_.remove_prefix(1);
    while (text_.starts_with(' ')) text_.remove_prefix(1);
    return true;
  }

  /// Past the bracket that closes the one taken last.
  void close() {
    for (int open = 1; open > 0 && !text_.empty(); text_.remove_prefix(1))
      open += text_.front() == '(' ? 1 : text_.front() == ')' ? -1 : 0;
  }

  std::string_view text_;
};

}  // namespace

TCassType TCassType::fromClass(std::string_view classText) { return TClassReader(classText).type(); }

std::string TCassType::cql() const {
  if (base == TBase::User) return frozen ? "frozen<" + name + ">" : name;
  const auto* known =
      std::find_if(typeNames.begin(), typeNames.end(), [&](const TTypeName& t) { return t.base == base; });
  std::string text(base == TBase::Unknown ? std::string_view(name) : known->cql);
  if (parts.empty()) return text;
  text += '<';
  for (std::size_t i = 0; i < parts.size(); ++i) text += (i > 0 ? ", " : "") + parts[i].cql();
  text += '>';
  return frozen ? "frozen<" + text + ">" : text;
}

}  // namespace hollowmere
