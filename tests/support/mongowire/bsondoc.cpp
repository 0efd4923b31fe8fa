#include "support/mongowire/bsondoc.h"

#include <stdexcept>

namespace hollowmere::mongowire {

namespace {

std::string_view bytesOf(const bson_t* doc) {
  return {reinterpret_cast<const char*>(bson_get_data(doc)), doc->len};
}

}  // namespace

TBsonView::TBsonView(std::string_view bytes) {
  if (!bson_init_static(&doc_, reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()))
    throw std::invalid_argument("not an encoded BSON document");
}

TBson::TBson() : bytes_("\x05\0\0\0\0", 5) {}

TBson::TBson(const bson_t* doc) : bytes_(bytesOf(doc)) {}

TBson TBson::fromJson(std::string_view json) {
  bson_error_t error;
  bson_t* parsed = bson_new_from_json(reinterpret_cast<const std::uint8_t*>(json.data()),
                                      static_cast<ssize_t>(json.size()), &error);
  if (!parsed) throw std::invalid_argument(error.message);
  TBson made(parsed);
  bson_destroy(parsed);
  return made;
}

std::string TBson::json() const {
  const TBsonView doc = view();
  char* text = bson_as_relaxed_extended_json(doc.get(), nullptr);
  if (!text) throw std::invalid_argument("BSON that cannot be written as JSON");
  std::string copy(text);
  bson_free(text);
  return copy;
}

TBsonBuilder& TBsonBuilder::int32(const char* key, std::int32_t value) {
  BSON_APPEND_INT32(&doc_, key, value);
  return *this;
}

TBsonBuilder& TBsonBuilder::int64(const char* key, std::int64_t value) {
  BSON_APPEND_INT64(&doc_, key, value);
  return *this;
}

TBsonBuilder& TBsonBuilder::real(const char* key, double value) {
  BSON_APPEND_DOUBLE(&doc_, key, value);
  return *this;
}

TBsonBuilder& TBsonBuilder::boolean(const char* key, bool value) {
  BSON_APPEND_BOOL(&doc_, key, value);
  return *this;
}

TBsonBuilder& TBsonBuilder::text(const char* key, std::string_view value) {
  bson_append_utf8(&doc_, key, -1, value.data(), static_cast<int>(value.size()));
  return *this;
}

TBsonBuilder& TBsonBuilder::document(const char* key, const TBson& value) {
  const TBsonView view = value.view();
  BSON_APPEND_DOCUMENT(&doc_, key, view.get());
  return *this;
}

TBsonBuilder& TBsonBuilder::array(const char* key, const TBson& value) {
  const TBsonView view = value.view();
  BSON_APPEND_ARRAY(&doc_, key, view.get());
  return *this;
}

std::int64_t integerField(const bson_t* doc, const char* key, std::int64_t otherwise) {
  bson_iter_t at;
  if (!bson_iter_init_find(&at, doc, key) || !BSON_ITER_HOLDS_NUMBER(&at)) return otherwise;
  return bson_iter_as_int64(&at);
}

bool truthField(const bson_t* doc, const char* key, bool otherwise) {
  bson_iter_t at;
  if (!bson_iter_init_find(&at, doc, key)) return otherwise;
  return bson_iter_as_bool(&at);
}

std::string_view textField(const bson_t* doc, const char* key) {
  bson_iter_t at;
  if (!bson_iter_init_find(&at, doc, key) || !BSON_ITER_HOLDS_UTF8(&at)) return {};
  std::uint32_t length = 0;
  const char* text = bson_iter_utf8(&at, &length);
  return {text, length};
}

std::string_view nestedField(const bson_t* doc, const char* key) {
  bson_iter_t at;
  if (!bson_iter_init_find(&at, doc, key)) return {};
  return nestedBytes(at);
}

std::string_view nestedBytes(const bson_iter_t& at) {
  std::uint32_t length = 0;
  const std::uint8_t* data = nullptr;
  if (BSON_ITER_HOLDS_DOCUMENT(&at)) bson_iter_document(&at, &length, &data);
  if (BSON_ITER_HOLDS_ARRAY(&at)) bson_iter_array(&at, &length, &data);
  return {reinterpret_cast<const char*>(data), length};
}

}  // namespace hollowmere::mongowire
