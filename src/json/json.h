#pragma once

#include <cstddef>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

#include "json/value.h"

namespace hollowmere {

/// A text that is not the JSON that was asked for. what() says what is wrong and at which byte.
class TJsonError : public std::runtime_error {
 public:
  TJsonError(const std::string& reason, std::size_t offset);
  /// Bytes before the fault, from 0.
  [[nodiscard]] std::size_t offset() const { return offset_; }

 private:
  std::size_t offset_;
};

/// Reads JSON text (RFC 8259, strict UTF-8, nothing behind the value). Keeps the order of members; an
/// integer of 64 bits is an Int, a number beyond 64 bits or beyond a double is kept whole as a Decimal.
/// Holds buffers that are used again: one reader a thread.
class TJsonReader {
 public:
  /// How deep lists and objects may stand in each other.
  static constexpr std::size_t defaultDepth = 200;

  explicit TJsonReader(std::size_t depthLimit = defaultDepth);
  ~TJsonReader();
  TJsonReader(TJsonReader&&) noexcept;
  TJsonReader& operator=(TJsonReader&&) noexcept;

  /// Throws TJsonError.
  TValue read(std::string_view text);

 private:
  struct TParser;
  std::unique_ptr<TParser> parser_;
};

/// One text, read with a reader of its own. Throws TJsonError.
TValue parseJson(std::string_view text);

/// Whether the bytes are well-formed UTF-8 (no surrogates, no overlong forms).
bool isUtf8(std::string_view bytes);

/// How a text member is written into JSON text.
enum class TTextForm {
  Plain,    ///< the text itself
  Markers,  ///< each double quote as "&quot;", as values that leave a store are written
};

/// Appends the compact JSON text of a value: no added white space, members in their order. Kinds that JSON
/// lacks become text: binary "&base64;" + Base64, object id its 24 digits, date-time ISO 8601 in UTC with
/// milliseconds; NaN and the infinities are quoted words.
void appendJson(std::string& out, const TValue& value, TTextForm form = TTextForm::Plain);
void appendJson(std::string& out, const TObject& object, TTextForm form = TTextForm::Plain);
std::string toJson(const TValue& value, TTextForm form = TTextForm::Plain);
std::string toJson(const TObject& object, TTextForm form = TTextForm::Plain);
/// The same, indented by two blanks a level, for people.
std::string toPrettyJson(const TValue& value);

}  // namespace hollowmere
