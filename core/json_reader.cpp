#include "core/json_reader.h"

#include <boost/json/basic_parser_impl.hpp>
#include <iterator>

#include "core/json_syntax.h"

namespace orvane {

namespace {

// Collects what the parser reports. Finished values wait on one stack, with their keys where they have some, until
// their container ends and takes them, so each container is built once, at its final size.
class Builder {
 public:
  using ErrorCode = boost::json::error_code;
  using StringView = boost::json::string_view;

  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  // Enough for most requests without growing.
  Builder() { stack_.reserve(16); }

  bool on_document_begin(ErrorCode&) { return true; }
  bool on_document_end(ErrorCode&) { return true; }
  bool on_object_begin(ErrorCode&) {
    isInObject_.push_back(true);
    return true;
  }
  bool on_array_begin(ErrorCode&) {
    isInObject_.push_back(false);
    return true;
  }

  bool on_object_end(std::size_t count, ErrorCode&) {
    const auto first = stack_.end() - static_cast<std::ptrdiff_t>(count);
    std::vector<JSONMember> members(std::make_move_iterator(first), std::make_move_iterator(stack_.end()));
    stack_.erase(first, stack_.end());
    isInObject_.pop_back();
    add(JSON::Object::fromMembers(std::move(members)));
    return true;
  }

  bool on_array_end(std::size_t count, ErrorCode&) {
    const auto first = stack_.end() - static_cast<std::ptrdiff_t>(count);
    JSON::Array elements;
    elements.reserve(count);
    for (auto slot = first; slot != stack_.end(); ++slot) elements.push_back(std::move(slot->value));
    stack_.erase(first, stack_.end());
    isInObject_.pop_back();
    add(std::move(elements));
    return true;
  }

  bool on_key_part(StringView part, std::size_t, ErrorCode&) { return addPart(part); }
  bool on_key(StringView part, std::size_t, ErrorCode&) {
    stack_.push_back({takeText(part), {}});
    return true;
  }
  bool on_string_part(StringView part, std::size_t, ErrorCode&) { return addPart(part); }
  bool on_string(StringView part, std::size_t, ErrorCode&) {
    add(takeText(part));
    return true;
  }

  bool on_number_part(StringView part, ErrorCode&) { return addPart(part); }
  bool on_int64(std::int64_t, StringView part, ErrorCode&) { return addNumber(part); }
  bool on_uint64(std::uint64_t, StringView part, ErrorCode&) { return addNumber(part); }
  bool on_double(double, StringView part, ErrorCode&) { return addNumber(part); }

  bool on_bool(bool value, ErrorCode&) {
    add(value);
    return true;
  }
  bool on_null(ErrorCode&) {
    add(nullptr);
    return true;
  }
  bool on_comment_part(StringView, ErrorCode&) { return true; }
  bool on_comment(StringView, ErrorCode&) { return true; }

  JSON takeDocument() { return std::move(stack_.back().value); }

 private:
  // A value in an object belongs to the key before it, which waits on the stack already.
  void add(JSON value) {
    if (!isInObject_.empty() && isInObject_.back()) {
      stack_.back().value = std::move(value);
    } else {
      stack_.push_back({{}, std::move(value)});
    }
  }
  bool addPart(StringView part) {
    text_.append(part.data(), part.size());
    return true;
  }
  // The text whose last piece is `part`; most have no other.
  std::string takeText(StringView part) {
    if (text_.empty()) return {part.data(), part.size()};
    addPart(part);
    return std::exchange(text_, {});
  }
  bool addNumber(StringView part) {
    add(JSON::Number{takeText(part)});
    return true;
  }

  std::vector<JSONMember> stack_;
  std::vector<bool> isInObject_;  // for each open container
  std::string text_;
};

}  // namespace

JSONReadResult readJSON(std::string_view text) {
  boost::json::parse_options options;
  options.max_depth = maxReadNesting;
  boost::json::basic_parser<Builder> parser(options);
  boost::json::error_code error;
  const std::size_t used = parser.write_some(false, text.data(), text.size(), error);
  if (error == boost::json::error::too_deep && isJSONText(text)) return {JSONReadOutcome::tooDeep, {}};
  if (error.failed() || used != text.size()) return {JSONReadOutcome::invalid, {}};
  return {JSONReadOutcome::ok, parser.handler().takeDocument()};
}

std::optional<JSON::Object> readJSONObject(std::string_view text) {
  JSONReadResult result = readJSON(text);
  JSON::Object* object = result.value.asObject();
  if (object == nullptr) return std::nullopt;
  return std::move(*object);
}

}  // namespace orvane
