#pragma once

#include <bson/bson.h>

#include <cstdint>
#include <string>
#include <string_view>

namespace hollowmere::mongowire {

/// A borrowed look at encoded BSON; the bytes must outlive it. bson_t points into itself, hence no copying.
class TBsonView {
 public:
  explicit TBsonView(std::string_view bytes);
  TBsonView(const TBsonView&) = delete;
  TBsonView& operator=(const TBsonView&) = delete;
  const bson_t* get() const { return &doc_; }

 private:
  bson_t doc_;
};

/// An owned, encoded document: plain bytes, so that copies are cheap and cross threads freely.
class TBson {
 public:
  TBson();
  explicit TBson(const bson_t* doc);
  explicit TBson(std::string_view bytes) : bytes_(bytes) {}

  /// Strict or extended JSON. Throws std::invalid_argument with the parser's complaint.
  static TBson fromJson(std::string_view json);

  const std::string& bytes() const { return bytes_; }
  TBsonView view() const { return TBsonView(bytes_); }
  /// Relaxed extended JSON, in libbson's spacing: { "a" : 1 }.
  std::string json() const;
  bool operator==(const TBson&) const = default;

 private:
  std::string bytes_;
};

/// A document being written; released at the end of its scope.
class TBsonBuilder {
 public:
  TBsonBuilder() { bson_init(&doc_); }
  ~TBsonBuilder() { bson_destroy(&doc_); }
  TBsonBuilder(const TBsonBuilder&) = delete;
  TBsonBuilder& operator=(const TBsonBuilder&) = delete;

  bson_t* get() { return &doc_; }
  TBsonBuilder& int32(const char* key, std::int32_t value);
  TBsonBuilder& int64(const char* key, std::int64_t value);
  TBsonBuilder& real(const char* key, double value);
  TBsonBuilder& boolean(const char* key, bool value);
  TBsonBuilder& text(const char* key, std::string_view value);
  TBsonBuilder& document(const char* key, const TBson& value);
  TBsonBuilder& array(const char* key, const TBson& value);
  TBson take() const { return TBson(&doc_); }

 private:
  bson_t doc_;
};

/// A top-level number as int64, or `otherwise` when the field is missing or no number.
std::int64_t integerField(const bson_t* doc, const char* key, std::int64_t otherwise);
/// A top-level boolean or number as a truth value, or `otherwise`.
bool truthField(const bson_t* doc, const char* key, bool otherwise);
/// A top-level string, borrowed from the document, or empty.
std::string_view textField(const bson_t* doc, const char* key);
/// A top-level document or array as its encoded bytes, borrowed, or empty when there is none.
std::string_view nestedField(const bson_t* doc, const char* key);
/// The encoded bytes of the document or array the iterator stands on, or empty.
std::string_view nestedBytes(const bson_iter_t& at);

}  // namespace hollowmere::mongowire
