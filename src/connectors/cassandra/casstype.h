#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace hollowmere {

/// A type of a column or a marker.
struct TCassType {
  enum class TBase : std::uint8_t {
    Ascii,
    Text,
    Blob,
    Boolean,
    TinyInt,
    SmallInt,
    Int,
    BigInt,
    Counter,
    Varint,
    Decimal,
    Float,
    Double,
    Timestamp,
    Date,
    Time,
    Duration,
    Uuid,
    TimeUuid,
    Inet,
    List,
    Set,
    Map,
    Tuple,
    User,
    Unknown,
  };

  /// Of a class text ("org.apache.cassandra.db.marshal.ListType(...Int32Type)"), as results, prepared
  /// statements and the validators of older servers have it. What it does not know is Unknown.
  static TCassType fromClass(std::string_view classText);

  /// As CQL writes it: "map<text, frozen<list<int>>>"; a user type by its name.
  [[nodiscard]] std::string cql() const;
  [[nodiscard]] bool isCollection() const {
    return base == TBase::List || base == TBase::Set || base == TBase::Map;
  }

  TBase base = TBase::Unknown;
  bool frozen = false;
  bool reversed = false;            ///< a clustering column in descending order
  std::string name;                 ///< of a user type
  std::vector<TCassType> parts;     ///< element; key and value; items; fields
  std::vector<std::string> fields;  ///< names of a user type's fields
};

}  // namespace hollowmere
