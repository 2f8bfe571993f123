#include "core/json_writer.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>

#include "core/utf8.h"

namespace orvane {

namespace {

constexpr std::string_view hexDigits = "0123456789abcdef";

// The letter after the backslash for the characters that have a short escape, 'u' for other control characters, 0 for
// what stands for itself. Indexed by byte.
constexpr std::array<char, 256> escapeLetters = [] {
  std::array<char, 256> letters{};
  for (std::size_t control = 0; control < 0x20; ++control) letters[control] = 'u';
  letters['\b'] = 'b';
  letters['\f'] = 'f';
  letters['\n'] = 'n';
  letters['\r'] = 'r';
  letters['\t'] = 't';
  letters['"'] = '"';
  letters['\\'] = '\\';
  return letters;
}();

// Where the text that is written stands.
enum class Place {
  document,  // on its own
  string,    // as the content of a JSON string, so that its quotes, backslashes and line feeds are escaped once more
};

class Writer {
 public:
  Writer(std::string& text, Slashes slashes, Place place = Place::document)
      : text_(text), slashes_(slashes), place_(place) {}

  void string(std::string_view value) {
    if (!isValidUTF8(value)) throw JSONWriteError("a string is not valid UTF-8");
    quote();
    while (true) {
      const std::size_t plain = plainPrefix(value);
      text_.append(value.data(), plain);
      if (plain == value.size()) break;
      appendEscape(value[plain]);
      value.remove_prefix(plain + 1);
    }
    quote();
  }

  void compact(const JSON& value) {
    value.visit([this](const auto& held) { compact(held); });
  }

  void compact(const JSON::Array& array) {
    text_ += '[';
    bool first = true;
    for (const JSON& element : array) {
      if (!std::exchange(first, false)) text_ += ',';
      compact(element);
    }
    text_ += ']';
  }
  void compact(const JSON::Object& object) {
    text_ += '{';
    bool first = true;
    for (const auto& [key, value] : object) {
      if (!std::exchange(first, false)) text_ += ',';
      string(key);
      text_ += ':';
      compact(value);
    }
    text_ += '}';
  }

  void pretty(const JSON& value, std::size_t indent) {
    if (const JSON::Array* array = value.asArray(); array != nullptr && !array->empty()) {
      char opening = '[';
      for (const JSON& element : *array) {
        startLine(std::exchange(opening, ','), indent + indentStep);
        pretty(element, indent + indentStep);
      }
      endLines(']', indent);
    } else if (const JSON::Object* object = value.asObject(); object != nullptr && !object->empty()) {
      std::vector<const JSONMember*> members;
      members.reserve(object->size());
      for (const JSONMember& member : *object) members.push_back(&member);
      std::sort(members.begin(), members.end(), [](const auto* a, const auto* b) { return a->key < b->key; });
      char opening = '{';
      for (const JSONMember* member : members) {
        startLine(std::exchange(opening, ','), indent + indentStep);
        string(member->key);
        text_ += ": ";
        pretty(member->value, indent + indentStep);
      }
      endLines('}', indent);
    } else {
      compact(value);
    }
  }

 private:
  static constexpr std::size_t indentStep = 2;
  // Where a hostile application nests hundreds of levels, blanks would outweigh the rest by far.
  static constexpr std::size_t maxIndent = 32;

  // The number of bytes at the start of `value` that stand for themselves. Looks at eight at a time.
  std::size_t plainPrefix(std::string_view value) const {
    std::size_t length = 0;
    for (std::uint64_t word = 0; length + sizeof word <= value.size(); length += sizeof word) {
      std::memcpy(&word, value.data() + length, sizeof word);
      if (mayNeedEscape(word)) break;
    }
    while (length < value.size() && escapeLetter(value[length]) == 0) ++length;
    return length;
  }

  // False only if no byte of `word` needs an escape: none is below 0x20, a quote, a backslash, or a slash to be
  // escaped.
  bool mayNeedEscape(std::uint64_t word) const {
    constexpr std::uint64_t ones = 0x0101010101010101U;
    constexpr std::uint64_t highs = 0x8080808080808080U;
    const auto hasByteBelow = [](std::uint64_t bytes, std::uint64_t limit) {
      return ((bytes - ones * limit) & ~bytes & highs) != 0;
    };
    return hasByteBelow(word, 0x20) || hasByteBelow(word ^ (ones * '"'), 1) || hasByteBelow(word ^ (ones * '\\'), 1) ||
           (slashes_ == Slashes::escaped && hasByteBelow(word ^ (ones * '/'), 1));
  }

  char escapeLetter(char character) const {
    if (character == '/' && slashes_ == Slashes::escaped) return '/';
    return escapeLetters[static_cast<unsigned char>(character)];
  }

  void appendEscape(char character) {
    backslash();
    switch (const char letter = escapeLetter(character)) {
      case '"':
        quote();
        break;
      case '\\':
        backslash();
        break;
      case 'u': {
        const auto byte = static_cast<unsigned char>(character);
        const char digits[] = {'u', '0', '0', hexDigits[byte >> 4U], hexDigits[byte & 0xFU]};
        text_.append(digits, sizeof digits);
        break;
      }
      default:
        text_ += letter;
    }
  }

  void compact(std::nullptr_t) { text_ += "null"; }
  void compact(bool value) { text_ += value ? "true" : "false"; }
  void compact(const JSON::Number& value) { text_ += value.text; }
  void compact(const std::string& value) { string(value); }

  void quote() { text_ += place_ == Place::document ? std::string_view("\"") : std::string_view("\\\""); }
  void newline() { text_ += place_ == Place::document ? std::string_view("\n") : std::string_view("\\n"); }
  void backslash() { text_ += place_ == Place::document ? std::string_view("\\") : std::string_view("\\\\"); }

  void startLine(char opening, std::size_t indent) {
    text_ += opening;
    newline();
    text_.append(std::min(indent, maxIndent), ' ');
  }
  void endLines(char closing, std::size_t indent) {
    newline();
    text_.append(std::min(indent, maxIndent), ' ');
    text_ += closing;
  }

  std::string& text_;
  Slashes slashes_;
  Place place_;
};

}  // namespace

std::string writeCompactJSON(const JSON& value, Slashes slashes) {
  std::string text;
  appendCompactJSON(text, value, slashes);
  return text;
}

void appendCompactJSON(std::string& text, const JSON& value, Slashes slashes) { Writer(text, slashes).compact(value); }

void appendCompactJSON(std::string& text, const JSON::Object& object, Slashes slashes) {
  Writer(text, slashes).compact(object);
}

std::string writePrettyJSON(const JSON& value) {
  std::string text;
  Writer(text, Slashes::plain).pretty(value, 0);
  return text;
}

void appendPrettyJSONString(std::string& text, const JSON& value) {
  text += '"';
  Writer(text, Slashes::plain, Place::string).pretty(value, 0);
  text += '"';
}

}  // namespace orvane
