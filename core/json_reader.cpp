#include "core/json_reader.h"

#include <boost/json/basic_parser_impl.hpp>
#include <iterator>

namespace orvane {

namespace {

// Collects what the parser reports. Finished values wait on one stack until their container ends and takes them, so
// each container is built once, at its final size.
class Builder {
 public:
  using ErrorCode = boost::json::error_code;
  using StringView = boost::json::string_view;

  static constexpr std::size_t max_object_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_array_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_key_size = static_cast<std::size_t>(-1);
  static constexpr std::size_t max_string_size = static_cast<std::size_t>(-1);

  Builder() {
    // Enough for most requests without growing.
    values_.reserve(16);
    keys_.reserve(16);
  }

  bool on_document_begin(ErrorCode&) { return true; }
  bool on_document_end(ErrorCode&) { return true; }
  bool on_object_begin(ErrorCode&) { return true; }
  bool on_array_begin(ErrorCode&) { return true; }

  bool on_object_end(std::size_t count, ErrorCode&) {
    std::vector<JSONMember> members;
    members.reserve(count);
    const auto firstValue = values_.end() - static_cast<std::ptrdiff_t>(count);
    const auto firstKey = keys_.end() - static_cast<std::ptrdiff_t>(count);
    for (std::size_t i = 0; i < count; ++i) {
      const auto offset = static_cast<std::ptrdiff_t>(i);
      members.push_back({std::move(firstKey[offset]), std::move(firstValue[offset])});
    }
    keys_.erase(firstKey, keys_.end());
    values_.erase(firstValue, values_.end());
    values_.emplace_back(JSON::Object::fromMembers(std::move(members)));
    return true;
  }

  bool on_array_end(std::size_t count, ErrorCode&) {
    const auto first = values_.end() - static_cast<std::ptrdiff_t>(count);
    JSON::Array elements(std::make_move_iterator(first), std::make_move_iterator(values_.end()));
    values_.erase(first, values_.end());
    values_.emplace_back(std::move(elements));
    return true;
  }

  bool on_key_part(StringView part, std::size_t, ErrorCode&) { return addPart(part); }
  bool on_key(StringView part, std::size_t, ErrorCode&) {
    keys_.push_back(takeText(part));
    return true;
  }
  bool on_string_part(StringView part, std::size_t, ErrorCode&) { return addPart(part); }
  bool on_string(StringView part, std::size_t, ErrorCode&) {
    values_.emplace_back(takeText(part));
    return true;
  }

  bool on_number_part(StringView part, ErrorCode&) { return addPart(part); }
  bool on_int64(std::int64_t, StringView part, ErrorCode&) { return addNumber(part); }
  bool on_uint64(std::uint64_t, StringView part, ErrorCode&) { return addNumber(part); }
  bool on_double(double, StringView part, ErrorCode&) { return addNumber(part); }

  bool on_bool(bool value, ErrorCode&) {
    values_.emplace_back(value);
    return true;
  }
  bool on_null(ErrorCode&) {
    values_.emplace_back();
    return true;
  }
  bool on_comment_part(StringView, ErrorCode&) { return true; }
  bool on_comment(StringView, ErrorCode&) { return true; }

  JSON takeDocument() { return std::move(values_.back()); }

 private:
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
    values_.emplace_back(JSON::Number{takeText(part)});
    return true;
  }

  std::vector<JSON> values_;
  std::vector<std::string> keys_;
  std::string text_;
};

}  // namespace

JSONReadResult readJSON(std::string_view text) {
  boost::json::parse_options options;
  options.max_depth = maxReadNesting;
  boost::json::basic_parser<Builder> parser(options);
  boost::json::error_code error;
  const std::size_t used = parser.write_some(false, text.data(), text.size(), error);
  if (error == boost::json::error::too_deep) return {JSONReadOutcome::tooDeep, {}};
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
