// The JSON value that travels through the server. It keeps what a proxy must not lose: numbers as they were written,
// members in their order, and one value per key (a later duplicate replaces the earlier one, in the earlier one's
// place). Values own what they hold; reading and writing are in json_reader.h and json_writer.h.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace orvane {

class JSON;
struct JSONMember;
struct JSONMemberInit;

/// An array's elements, in order.
using JSONArray = std::vector<JSON>;

/// An object's members, in order of first insertion; keys are unique, compared byte by byte.
class JSONObject {
 public:
  JSONObject();
  JSONObject(const JSONObject&);
  JSONObject(JSONObject&&) noexcept;
  JSONObject& operator=(const JSONObject&);
  JSONObject& operator=(JSONObject&&) noexcept;
  ~JSONObject();
  /// Members in the order given; of two with one key the later value stays.
  JSONObject(std::initializer_list<JSONMemberInit> members);
  /// Takes members in order; of two with one key the later value stays, in the place of the earlier. Linear time.
  static JSONObject fromMembers(std::vector<JSONMember> members);

  /// The value under `key`, or nullptr. Valid until the object changes. Looks at every member in turn.
  const JSON* find(std::string_view key) const;
  /// Puts `value` under `key`: in the key's place if it has one, else at the end.
  void set(std::string_view key, JSON value);
  /// Removes `key` if it is there.
  void remove(std::string_view key);
  /// Removes `key` and gives its value, if it is there.
  std::optional<JSON> take(std::string_view key);

  bool empty() const { return members_.empty(); }
  std::size_t size() const;
  auto begin() const { return members_.begin(); }
  auto end() const { return members_.end(); }

  bool operator==(const JSONObject& other) const;

 private:
  std::vector<JSONMember> members_;
};

/// A number exactly as it was written: a number of the JSON grammar (RFC 8259, section 6), never evaluated.
struct JSONNumber {
  std::string text;
  bool operator==(const JSONNumber&) const = default;
};

/// A JSON value: null, a boolean, a number as written, a string (any bytes; only UTF-8 can be written out), an array or
/// an object. The kinds are told apart by the as... functions, which give nothing for another kind.
class JSON {
 public:
  using Array = JSONArray;
  using Object = JSONObject;
  using Number = JSONNumber;

  /// null
  JSON() = default;
  JSON(std::nullptr_t) {}
  JSON(std::same_as<bool> auto value) : value_(value) {}
  template <std::integral T>
  requires(!std::same_as<T, bool>) JSON(T value) : value_(Number{std::to_string(value)}) {}
  JSON(Number value) : value_(std::move(value)) {}
  JSON(std::string value) : value_(std::move(value)) {}
  JSON(std::string_view value) : value_(std::string(value)) {}
  JSON(const char* value) : value_(std::string(value)) {}
  JSON(Array value) : value_(std::move(value)) {}
  JSON(Object value) : value_(std::move(value)) {}

  bool isNull() const { return std::holds_alternative<std::nullptr_t>(value_); }

  // Each gives the value if it is of that kind, else nullptr.
  const bool* asBool() const { return std::get_if<bool>(&value_); }
  const Number* asNumber() const { return std::get_if<Number>(&value_); }
  const std::string* asString() const { return std::get_if<std::string>(&value_); }
  const Array* asArray() const { return std::get_if<Array>(&value_); }
  const Object* asObject() const { return std::get_if<Object>(&value_); }
  Object* asObject() { return std::get_if<Object>(&value_); }

  /// The value as a signed 64-bit integer, if it is a number written as one (digits only) and in range.
  std::optional<std::int64_t> asInteger() const;

  /// Calls `visitor` with the held nullptr_t, bool, Number, std::string, Array or Object.
  template <class Visitor>
  decltype(auto) visit(Visitor&& visitor) const {
    return std::visit(std::forward<Visitor>(visitor), value_);
  }

  /// Equal kind and content; numbers are equal when written alike, objects when members and order are alike.
  bool operator==(const JSON&) const = default;

 private:
  std::variant<std::nullptr_t, bool, Number, std::string, Array, Object> value_;
};

/// One member of an object.
struct JSONMember {
  std::string key;
  JSON value;
  bool operator==(const JSONMember&) const = default;
};

/// One member in a braced list, such as {{"ok", true}}: its value is moved into the object and never copied.
struct JSONMemberInit {
  std::string_view key;
  mutable JSON value;
};

// Here, because libc++ takes these only where JSONMember is complete.
inline JSONObject::JSONObject() = default;
inline JSONObject::JSONObject(const JSONObject&) = default;
inline JSONObject::JSONObject(JSONObject&&) noexcept = default;
inline JSONObject& JSONObject::operator=(const JSONObject&) = default;
inline JSONObject& JSONObject::operator=(JSONObject&&) noexcept = default;
inline JSONObject::~JSONObject() = default;
inline std::size_t JSONObject::size() const { return members_.size(); }
inline bool JSONObject::operator==(const JSONObject& other) const { return members_ == other.members_; }

}  // namespace orvane
