#include "support/mongowire/values.h"

#include <charconv>
#include <cmath>

#include "support/mongowire/bsondoc.h"
#include "support/mongowire/replies.h"

namespace hollowmere::mongowire {

namespace {

bool integral(double value) { return std::trunc(value) == value && std::fabs(value) < 9e18; }

int rank(bson_type_t type) {
  switch (type) {
    case BSON_TYPE_MINKEY: return 0;
    case BSON_TYPE_UNDEFINED:
    case BSON_TYPE_NULL: return 1;
    case BSON_TYPE_INT32:
    case BSON_TYPE_INT64:
    case BSON_TYPE_DOUBLE:
    case BSON_TYPE_DECIMAL128: return 2;
    case BSON_TYPE_SYMBOL:
    case BSON_TYPE_UTF8: return 3;
    case BSON_TYPE_DOCUMENT: return 4;
    case BSON_TYPE_ARRAY: return 5;
    case BSON_TYPE_BINARY: return 6;
    case BSON_TYPE_OID: return 7;
    case BSON_TYPE_BOOL: return 8;
    case BSON_TYPE_DATE_TIME: return 9;
    case BSON_TYPE_TIMESTAMP: return 10;
    case BSON_TYPE_REGEX: return 11;
    case BSON_TYPE_MAXKEY: return 127;
    default: return 20;
  }
}

template <typename T>
int order(const T& left, const T& right) {
  return left < right ? -1 : (right < left ? 1 : 0);
}

int compareNumbers(const bson_iter_t& left, const bson_iter_t& right) {
  if (BSON_ITER_HOLDS_DOUBLE(&left) || BSON_ITER_HOLDS_DOUBLE(&right))
    return order(bson_iter_as_double(&left), bson_iter_as_double(&right));
  return order(bson_iter_as_int64(&left), bson_iter_as_int64(&right));
}

std::string_view textOf(const bson_iter_t& value) {
  std::uint32_t length = 0;
  const char* text = bson_iter_utf8(&value, &length);
  return {text, length};
}

bool isNull(const bson_iter_t& value) { return BSON_ITER_HOLDS_NULL(&value); }

void refuseOperators(const char* key, const bson_iter_t& wanted) {
  const std::string name(key);
  bson_iter_t inside;
  const bool nested = BSON_ITER_HOLDS_DOCUMENT(&wanted) && bson_iter_recurse(&wanted, &inside) &&
                      bson_iter_next(&inside) && bson_iter_key(&inside)[0] == '$';
  if (nested || name.starts_with('$') || name.find('.') != std::string::npos)
    throw TCommandError(2, "BadValue",
                        "this server compares top-level fields for equality only, not '" + name + "'");
}

}  // namespace

std::string valueKey(const bson_iter_t& value) {
  TBsonBuilder holder;
  const bool number =
      BSON_ITER_HOLDS_INT(&value) || (BSON_ITER_HOLDS_DOUBLE(&value) && integral(bson_iter_double(&value)));
  if (number)
    holder.int64("", bson_iter_as_int64(&value));
  else
    bson_append_iter(holder.get(), "", 0, &value);
  return holder.take().bytes();
}

int compareValues(const bson_iter_t& left, const bson_iter_t& right) {
  const int kinds = order(rank(bson_iter_type(&left)), rank(bson_iter_type(&right)));
  if (kinds != 0) return kinds;
  const bool decimal = BSON_ITER_HOLDS_DECIMAL128(&left) || BSON_ITER_HOLDS_DECIMAL128(&right);
  if (BSON_ITER_HOLDS_NUMBER(&left) && !decimal) return compareNumbers(left, right);
  if (BSON_ITER_HOLDS_UTF8(&left) && BSON_ITER_HOLDS_UTF8(&right)) return order(textOf(left), textOf(right));
  if (BSON_ITER_HOLDS_OID(&left)) return bson_oid_compare(bson_iter_oid(&left), bson_iter_oid(&right));
  if (BSON_ITER_HOLDS_DATE_TIME(&left)) return order(bson_iter_date_time(&left), bson_iter_date_time(&right));
  return order(valueKey(left), valueKey(right));
}

std::string shellText(const bson_iter_t& value) {
  if (BSON_ITER_HOLDS_INT(&value)) return std::to_string(bson_iter_as_int64(&value));
  if (BSON_ITER_HOLDS_UTF8(&value)) return '"' + std::string(textOf(value)) + '"';
  if (BSON_ITER_HOLDS_OID(&value)) {
    char hex[25];
    bson_oid_to_string(bson_iter_oid(&value), hex);
    return std::string("ObjectId('") + hex + "')";
  }
  TBsonBuilder holder;
  bson_append_iter(holder.get(), "v", 1, &value);
  const std::string json = holder.take().json();  // { "v" : ... }
  return json.substr(8, json.size() - 10);
}

void checkFilter(const bson_t* filter) {
  bson_iter_t wanted;
  if (!bson_iter_init(&wanted, filter)) return;
  while (bson_iter_next(&wanted)) refuseOperators(bson_iter_key(&wanted), wanted);
}

bool matches(const bson_t* document, const bson_t* filter) {
  bson_iter_t wanted;
  if (!bson_iter_init(&wanted, filter)) return false;
  while (bson_iter_next(&wanted)) {
    bson_iter_t found;
    const bool present = bson_iter_init_find(&found, document, bson_iter_key(&wanted));
    if (present ? valueKey(found) != valueKey(wanted) : !isNull(wanted)) return false;
  }
  return true;
}

}  // namespace hollowmere::mongowire
