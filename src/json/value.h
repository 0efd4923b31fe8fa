#pragma once

#include <array>
#include <cassert>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace hollowmere {

class TValue;

/// What a value is. A store's own kinds that JSON lacks (object id, decimal, binary, date-time) are kept
/// as they are from reader to writer; only JSON text turns them into text.
enum class TKind : std::uint8_t {
  Null,
  Boolean,
  Int,       ///< 64-bit signed integer
  Double,    ///< IEEE double, NaN and the infinities included
  Text,      ///< UTF-8
  DateTime,  ///< milliseconds since 1970-01-01 00:00 UTC
  Binary,    ///< bytes, with the store's own subtype number
  ObjectId,  ///< 12 bytes, MongoDB's identifier
  Decimal,   ///< a number kept exactly, as its text: beyond 64 bits, or decimal in the store
  List,
  Object,
};

/// English name of a kind for messages: "text", "date-time", ...
std::string_view kindName(TKind kind);

using TObjectId = std::array<std::uint8_t, 12>;
using TList = std::vector<TValue>;

struct TMember;

/// An ordered document: members keep the order in which they were added. Finding is linear, which is
/// quickest for the few dozen members that documents have. A name may stand twice when the outside text
/// held it twice; find() gives the first.
class TObject {
 public:
  using iterator = std::vector<TMember>::iterator;
  using const_iterator = std::vector<TMember>::const_iterator;

  TObject() = default;
  TObject(std::initializer_list<TMember> members);

  [[nodiscard]] bool empty() const { return members_.empty(); }
  [[nodiscard]] std::size_t size() const;
  void reserve(std::size_t count);
  void clear();

  iterator begin() { return members_.begin(); }
  iterator end() { return members_.end(); }
  [[nodiscard]] const_iterator begin() const { return members_.begin(); }
  [[nodiscard]] const_iterator end() const { return members_.end(); }

  /// The value of the first member of that name, or nullptr. Valid until the object changes.
  [[nodiscard]] const TValue* find(std::string_view name) const;
  TValue* find(std::string_view name);
  /// As find(), letter case of ASCII letters ignored.
  [[nodiscard]] const TMember* findIgnoringCase(std::string_view name) const;
  [[nodiscard]] bool contains(std::string_view name) const { return find(name) != nullptr; }

  /// Adds a member at the end, whether or not the name is there already.
  TValue& add(std::string_view name, TValue value);
  /// Adds a null member at the end, to be filled in its place.
  TMember& addNull(std::string_view name);
  /// Replaces the value of that name in its place, or adds it at the end.
  TValue& set(std::string_view name, TValue value);
  /// Removes the first member of that name; the others keep their order. False when there was none.
  bool remove(std::string_view name);
  /// Removes that member; gives the one after it.
  iterator erase(const_iterator at);
  iterator erase(const_iterator from, const_iterator to);

  bool operator==(const TObject& other) const;

 private:
  /// Becomes the text in its place: even a short text that is moved is copied once more.
  struct TToText {
    std::string_view text;
    operator std::string() const { return std::string(text); }
  };

  std::vector<TMember> members_;
};

/// One value of any kind; moves are cheap, copies are deep. A plain value type: threads may share it for
/// reading only.
class TValue {
 public:
  TValue() noexcept : kind_(TKind::Null), int_(0) {}
  TValue(std::nullptr_t) noexcept : TValue() {}
  TValue(bool value) noexcept : kind_(TKind::Boolean), int_(value) {}
  TValue(int value) noexcept : kind_(TKind::Int), int_(value) {}
  TValue(std::int64_t value) noexcept : kind_(TKind::Int), int_(value) {}
  TValue(double value) noexcept : kind_(TKind::Double), double_(value) {}
  TValue(std::string value) noexcept : kind_(TKind::Text), text_(std::move(value)) {}
  TValue(std::string_view value) : TValue(std::string(value)) {}
  TValue(const char* value) : TValue(std::string(value)) {}
  TValue(TList value) noexcept : kind_(TKind::List), list_(std::move(value)) {}
  TValue(TObject value) noexcept;
  TValue(const TObjectId& value) noexcept : kind_(TKind::ObjectId), objectId_(value) {}
  TValue(const TValue& other);
  TValue(TValue&& other) noexcept { moveFrom(other); }
  TValue& operator=(const TValue& other);
  TValue& operator=(TValue&& other) noexcept {
    if (this == &other) return *this;
    // Taken first: the other may be a part of this value.
    TValue taken(std::move(other));
    if (kind_ >= TKind::Text) destroy();
    moveFrom(taken);
    return *this;
  }
  ~TValue() {
    if (kind_ >= TKind::Text) destroy();
  }

  static TValue dateTime(std::int64_t millisecondsUtc);
  static TValue binary(std::string bytes, std::uint8_t subtype = 0);
  /// The digits as they are to stand in JSON text: a valid JSON number, or "NaN", "Infinity", "-Infinity".
  static TValue decimal(std::string digits);
  /// An integer that its store holds in 64 bits whatever its size; asInt() is the same.
  static TValue wideInt(std::int64_t value);

  [[nodiscard]] TKind kind() const { return kind_; }
  [[nodiscard]] bool is(TKind kind) const { return kind_ == kind; }
  [[nodiscard]] bool isNull() const { return kind_ == TKind::Null; }
  [[nodiscard]] bool isNested() const { return kind_ == TKind::List || kind_ == TKind::Object; }
  /// Binary: the store's subtype. Int: 1 when the store holds it in 64 bits. Otherwise 0.
  [[nodiscard]] std::uint8_t subtype() const { return subtype_; }

  // Each may be called only on a value of its kind (an assertion, not an error).
  [[nodiscard]] bool asBool() const {
    assert(is(TKind::Boolean));
    return int_ != 0;
  }
  [[nodiscard]] std::int64_t asInt() const {
    assert(is(TKind::Int));
    return int_;
  }
  [[nodiscard]] double asDouble() const {
    assert(is(TKind::Double));
    return double_;
  }
  /// Text, Decimal (its digits) and Binary (its bytes).
  [[nodiscard]] const std::string& asText() const {
    assert(hasText());
    return text_;
  }
  std::string& asText() {
    assert(hasText());
    return text_;
  }
  [[nodiscard]] std::int64_t asMilliseconds() const {
    assert(is(TKind::DateTime));
    return int_;
  }
  [[nodiscard]] const TObjectId& asObjectId() const {
    assert(is(TKind::ObjectId));
    return objectId_;
  }
  [[nodiscard]] const TList& asList() const {
    assert(is(TKind::List));
    return list_;
  }
  TList& asList() {
    assert(is(TKind::List));
    return list_;
  }
  [[nodiscard]] const TObject& asObject() const {
    assert(is(TKind::Object));
    return object_;
  }
  TObject& asObject() {
    assert(is(TKind::Object));
    return object_;
  }

  // Turns a null into a text, or the empty value of a kind, and hands that out, to be filled in its place.
  std::string& makeText(std::string_view text = {});
  TList& makeList();
  TObject& makeObject();

  /// Same kind and same content; NaN equals NaN here. The subtype of an integer does not count.
  bool operator==(const TValue& other) const;

 private:
  [[nodiscard]] bool hasText() const { return is(TKind::Text) || is(TKind::Binary) || is(TKind::Decimal); }
  void destroy() noexcept;
  /// Into a value that holds nothing to destroy. Moved on every step from reader to writer, so in line.
  void moveFrom(TValue& other) noexcept {
    kind_ = other.kind_;
    subtype_ = other.subtype_;
    if (kind_ < TKind::Text)
      int_ = other.int_;  // also the bytes of a double
    else
      moveLarge(other);
  }
  void moveLarge(TValue& other) noexcept;
  void copyFrom(const TValue& other);

  TKind kind_;
  std::uint8_t subtype_ = 0;
  union {
    std::int64_t int_;  ///< also of a Boolean and a DateTime
    double double_;
    TObjectId objectId_;
    std::string text_;
    TList list_;
    TObject object_;
  };
};

struct TMember {
  std::string name;
  TValue value;

  bool operator==(const TMember&) const = default;
};

// Behind TMember, which not every compiler lets a list of it be used before.
inline std::size_t TObject::size() const { return members_.size(); }
inline void TObject::clear() { members_.clear(); }
inline TObject::iterator TObject::erase(const_iterator at) { return members_.erase(at); }
inline TObject::iterator TObject::erase(const_iterator from, const_iterator to) {
  return members_.erase(from, to);
}
inline TValue::TValue(TObject value) noexcept : kind_(TKind::Object), object_(std::move(value)) {}
inline void TObject::reserve(std::size_t count) { members_.reserve(count); }

inline TValue& TObject::add(std::string_view name, TValue value) {
  return members_.emplace_back(TToText{name}, std::move(value)).value;
}

inline TMember& TObject::addNull(std::string_view name) {
  return members_.emplace_back(TToText{name}, TValue());
}

inline std::string& TValue::makeText(std::string_view text) {
  assert(isNull());
  std::construct_at(&text_, text);
  kind_ = TKind::Text;
  return text_;
}

inline TList& TValue::makeList() {
  assert(isNull());
  kind_ = TKind::List;
  return *std::construct_at(&list_);
}

inline TObject& TValue::makeObject() {
  assert(isNull());
  kind_ = TKind::Object;
  return *std::construct_at(&object_);
}

/// The 24 lower-case hexadecimal digits of an object id, and back (false when the text is not one).
std::string toHex(const TObjectId& id);
bool parseHex(std::string_view text, TObjectId& id);

/// True when two texts differ at most in the case of ASCII letters.
bool equalIgnoringCase(std::string_view a, std::string_view b);

}  // namespace hollowmere
