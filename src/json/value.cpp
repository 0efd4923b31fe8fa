#include "json/value.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <memory>
#include <new>

namespace hollowmere {

std::string_view kindName(TKind kind) {
  switch (kind) {
    case TKind::Null: return "null";
    case TKind::Boolean: return "boolean";
    case TKind::Int: return "integer";
    case TKind::Double: return "number";
    case TKind::Text: return "text";
    case TKind::DateTime: return "date-time";
    case TKind::Binary: return "binary";
    case TKind::ObjectId: return "object id";
    case TKind::Decimal: return "decimal";
    case TKind::List: return "list";
    case TKind::Object: return "object";
  }
  return "unknown";
}

TValue::TValue(const TValue& other) { copyFrom(other); }

TValue& TValue::operator=(const TValue& other) {
  if (this != &other) {
    // Copied first: the other may be a part of this value.
    TValue copy(other);
    if (kind_ >= TKind::Text) destroy();
    moveFrom(copy);
  }
  return *this;
}

void TValue::destroy() noexcept {
  switch (kind_) {
    case TKind::Text:
    case TKind::Binary:
    case TKind::Decimal: std::destroy_at(&text_); break;
    case TKind::List: std::destroy_at(&list_); break;
    case TKind::Object: std::destroy_at(&object_); break;
    default: break;
  }
}

void TValue::moveLarge(TValue& other) noexcept {
  switch (kind_) {
    case TKind::Text:
    case TKind::Binary:
    case TKind::Decimal: std::construct_at(&text_, std::move(other.text_)); break;
    case TKind::List: std::construct_at(&list_, std::move(other.list_)); break;
    case TKind::Object: std::construct_at(&object_, std::move(other.object_)); break;
    default: objectId_ = other.objectId_; break;
  }
}

void TValue::copyFrom(const TValue& other) {
  switch (other.kind_) {
    case TKind::Null: int_ = 0; break;
    case TKind::Boolean:
    case TKind::Int:
    case TKind::DateTime: int_ = other.int_; break;
    case TKind::Double: double_ = other.double_; break;
    case TKind::ObjectId: objectId_ = other.objectId_; break;
    case TKind::Text:
    case TKind::Binary:
    case TKind::Decimal: std::construct_at(&text_, other.text_); break;
    case TKind::List: std::construct_at(&list_, other.list_); break;
    case TKind::Object: std::construct_at(&object_, other.object_); break;
  }
  kind_ = other.kind_;
  subtype_ = other.subtype_;
}

TValue TValue::dateTime(std::int64_t millisecondsUtc) {
  TValue value(millisecondsUtc);
  value.kind_ = TKind::DateTime;
  return value;
}

TValue TValue::binary(std::string bytes, std::uint8_t subtype) {
  TValue value(std::move(bytes));
  value.kind_ = TKind::Binary;
  value.subtype_ = subtype;
  return value;
}

TValue TValue::decimal(std::string digits) {
  TValue value(std::move(digits));
  value.kind_ = TKind::Decimal;
  return value;
}

TValue TValue::wideInt(std::int64_t number) {
  TValue value(number);
  value.subtype_ = 1;
  return value;
}

bool TValue::operator==(const TValue& other) const {
  if (kind_ != other.kind_) return false;
  switch (kind_) {
    case TKind::Null: return true;
    case TKind::Boolean:
    case TKind::Int:
    case TKind::DateTime: return int_ == other.int_;
    case TKind::Double: return double_ == other.double_ || (std::isnan(double_) && std::isnan(other.double_));
    case TKind::ObjectId: return objectId_ == other.objectId_;
    case TKind::Binary: return subtype_ == other.subtype_ && text_ == other.text_;
    case TKind::Text:
    case TKind::Decimal: return text_ == other.text_;
    case TKind::List: return list_ == other.list_;
    case TKind::Object: return object_ == other.object_;
  }
  return false;
}

TObject::TObject(std::initializer_list<TMember> members) : members_(members) {}

const TValue* TObject::find(std::string_view name) const {
  for (const TMember& member : members_)
    if (member.name == name) return &member.value;
  return nullptr;
}

TValue* TObject::find(std::string_view name) { return const_cast<TValue*>(std::as_const(*this).find(name)); }

const TMember* TObject::findIgnoringCase(std::string_view name) const {
  for (const TMember& member : members_)
    if (equalIgnoringCase(member.name, name)) return &member;
  return nullptr;
}

TValue& TObject::set(std::string_view name, TValue value) {
  if (TValue* held = find(name)) return *held = std::move(value);
  return add(name, std::move(value));
}

bool TObject::remove(std::string_view name) {
  const auto at = std::find_if(members_.begin(), members_.end(),
                               [name](const TMember& member) { return member.name == name; });
  if (at == members_.end()) return false;
  members_.erase(at);
  return true;
}

bool TObject::operator==(const TObject& other) const { return members_ == other.members_; }

std::string toHex(const TObjectId& id) {
  static constexpr char digits[] = "0123456789abcdef";
  std::string text;
  text.reserve(24);
  for (const std::uint8_t byte : id) {
    text += digits[byte >> 4];
    text += digits[byte & 15];
  }
  return text;
}

namespace {

int hexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

char lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + ('a' - 'A')) : c; }

}  // namespace

bool parseHex(std::string_view text, TObjectId& id) {
  if (text.size() != 24) return false;
  for (std::size_t i = 0; i < id.size(); ++i) {
    const int high = hexDigit(text[2 * i]);
    const int low = hexDigit(text[2 * i + 1]);
    if (high < 0 || low < 0) return false;
    id[i] = static_cast<std::uint8_t>(high * 16 + low);
  }
  return true;
}

bool equalIgnoringCase(std::string_view a, std::string_view b) {
  return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                    [](char x, char y) { return lower(x) == lower(y); });
}

}  // namespace hollowmere
