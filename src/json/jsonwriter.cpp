#include <rapidjson/prettywriter.h>
#include <rapidjson/writer.h>

#include <algorithm>
#include <cmath>

#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// Lets the writer append to a string without a check per character. The string has its true length
/// again when this is gone.
class TStringStream {
 public:
  using Ch = char;

  explicit TStringStream(std::string& out) : out_(out), begin_(out.size()), used_(out.size()) {}
  TStringStream(const TStringStream&) = delete;
  TStringStream& operator=(const TStringStream&) = delete;
  ~TStringStream() { out_.resize(used_); }

  void reserve(std::size_t count) {
    // More room costs filling it, so it grows with what this stream writes, not with what was there before.
    if (out_.size() - used_ < count) out_.resize(used_ + count + std::max<std::size_t>(256, used_ - begin_));
  }
  void putUnsafe(char c) { out_[used_++] = c; }
  void Put(char c) {
    reserve(1);
    putUnsafe(c);
  }
  void Flush() {}

 private:
  std::string& out_;
  std::size_t begin_;
  std::size_t used_;
};

}  // namespace

}  // namespace hollowmere

namespace rapidjson {

template <>
inline void PutReserve(hollowmere::TStringStream& stream, size_t count) {
  stream.reserve(count);
}

template <>
inline void PutUnsafe(hollowmere::TStringStream& stream, char c) {
  stream.putUnsafe(c);
}

}  // namespace rapidjson

namespace hollowmere {

namespace {

using TWriter = rapidjson::Writer<TStringStream>;
using TPrettyWriter = rapidjson::PrettyWriter<TStringStream>;

template <typename W>
class TEmitter {
 public:
  TEmitter(W& writer, TTextForm form) : writer_(writer), form_(form) {}

  void object(const TObject& object) {
    writer_.StartObject();
    for (const TMember& member : object) {
      writer_.Key(member.name.data(), length(member.name));
      value(member.value);
    }
    writer_.EndObject();
  }

  void value(const TValue& value) {
    switch (value.kind()) {
      case TKind::Null: writer_.Null(); break;
      case TKind::Boolean: writer_.Bool(value.asBool()); break;
      case TKind::Int: writer_.Int64(value.asInt()); break;
      case TKind::Double: number(value.asDouble()); break;
      case TKind::Text: text(value.asText()); break;
      case TKind::DateTime: string(toIsoText(value.asMilliseconds())); break;
      case TKind::Binary: string("&base64;" + toBase64(value.asText())); break;
      case TKind::ObjectId: string(toHex(value.asObjectId())); break;
      case TKind::Decimal: decimal(value.asText()); break;
      case TKind::List: list(value.asList()); break;
      case TKind::Object: object(value.asObject()); break;
    }
  }

 private:
  static rapidjson::SizeType length(const std::string& text) {
    return static_cast<rapidjson::SizeType>(text.size());
  }

  void string(const std::string& text) { writer_.String(text.data(), length(text)); }

  void text(const std::string& text) {
    if (form_ == TTextForm::Plain || text.find('"') == std::string::npos) return string(text);
    std::string marked;
    for (const char c : text) {
      if (c == '"')
        marked += "&quot;";
      else
        marked += c;
    }
    string(marked);
  }

  void number(double number) {
    if (std::isfinite(number))
      writer_.Double(number);
    else
      string(std::isnan(number) ? "NaN" : number < 0 ? "-Infinity" : "Infinity");
  }

  void decimal(const std::string& digits) {
    const char last = digits.empty() ? '?' : digits.back();
    if (last < '0' || last > '9') return string(digits);  // NaN, Infinity
    writer_.RawValue(digits.data(), digits.size(), rapidjson::kNumberType);
  }

  void list(const TList& list) {
    writer_.StartArray();
    for (const TValue& element : list) value(element);
    writer_.EndArray();
  }

  W& writer_;
  TTextForm form_;
};

}  // namespace

void appendJson(std::string& out, const TValue& value, TTextForm form) {
  TStringStream stream(out);
  TWriter writer(stream);
  TEmitter(writer, form).value(value);
}

void appendJson(std::string& out, const TObject& object, TTextForm form) {
  TStringStream stream(out);
  TWriter writer(stream);
  TEmitter(writer, form).object(object);
}

std::string toJson(const TValue& value, TTextForm form) {
  std::string out;
  appendJson(out, value, form);
  return out;
}

std::string toJson(const TObject& object, TTextForm form) {
  std::string out;
  appendJson(out, object, form);
  return out;
}

std::string toPrettyJson(const TValue& value) {
  std::string out;
  {
    TStringStream stream(out);
    TPrettyWriter writer(stream);
    writer.SetIndent(' ', 2);
    TEmitter(writer, TTextForm::Plain).value(value);
  }
  return out;
}

}  // namespace hollowmere
