#pragma once

#include <bson/bson.h>

#include <stdexcept>
#include <string>
#include <utility>

#include "connectors/datetimetext.h"
#include "json/value.h"

namespace hollowmere {

/// Owns a BSON document. (The driver's type is over-aligned, which a standard smart pointer warns about.)
class TBsonPtr {
 public:
  explicit TBsonPtr(bson_t* bson) : bson_(bson) {}
  ~TBsonPtr() { bson_destroy(bson_); }
  TBsonPtr(TBsonPtr&& other) noexcept : bson_(std::exchange(other.bson_, nullptr)) {}
  TBsonPtr& operator=(TBsonPtr&& other) noexcept {
    std::swap(bson_, other.bson_);
    return *this;
  }

  [[nodiscard]] bson_t* get() const { return bson_; }
  bson_t* operator->() const { return bson_; }

 private:
  bson_t* bson_;
};

/// Appends the members of a document to a BSON document. Kinds stay what they are; an integer that fits
/// 32 bits is one unless its store said otherwise. Texts pass the rules of convertText(): a text may become
/// a boolean, binary or date-time, and markers are taken off. Throws std::runtime_error naming the member
/// that BSON cannot hold; the document is then of no use.
void JsonToBson(const TObject& document, bson_t* out, const TDateTimeText& dates);

/// A filter: as above, but the usual wrapper objects of MongoDB's JSON ("$oid", "$date", "$numberLong",
/// "$numberDecimal") are the values that they stand for.
TBsonPtr filterToBson(const TObject& filter, const TDateTimeText& dates);
/// The same with all texts as they are: those of a parent row keep their kind.
TBsonPtr boundFilterToBson(const TObject& filter, const TDateTimeText& dates);

/// The reverse, members in their order. Object ids, binary values, decimals and date-times keep their
/// kinds; a timestamp becomes a date-time; regular expressions, symbols, code and references become text.
/// Throws std::runtime_error when the bytes are no BSON.
TObject BsonToJson(const bson_t& bson);

}  // namespace hollowmere
