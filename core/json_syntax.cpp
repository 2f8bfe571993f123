#include "core/json_syntax.h"

#include <algorithm>
#include <optional>
#include <vector>

#include "core/utf8.h"

namespace orvane {

namespace {

bool isDigit(char character) { return character >= '0' && character <= '9'; }

// Takes JSON off the front of a text, piece by piece. Each function that returns a bool says whether the piece was
// there; after false, how much was taken is undefined.
class Scanner {
 public:
  explicit Scanner(std::string_view text) : rest_(text) {}

  bool isAtEnd() const { return rest_.empty(); }

  void skipBlanks() { rest_.remove_prefix(std::min(rest_.find_first_not_of(" \t\n\r"), rest_.size())); }

  bool take(char character) {
    if (!rest_.starts_with(character)) return false;
    rest_.remove_prefix(1);
    return true;
  }

  bool takeKey() {
    skipBlanks();
    if (!take('"') || !takeStringRest()) return false;
    skipBlanks();
    return take(':');
  }

  bool takeScalar() {
    if (take('"')) return takeStringRest();
    return take("true") || take("false") || take("null") || takeNumber();
  }

 private:
  bool take(std::string_view word) {
    if (!rest_.starts_with(word)) return false;
    rest_.remove_prefix(word.size());
    return true;
  }

  bool takeDigits() {
    const auto end = std::find_if_not(rest_.begin(), rest_.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - rest_.begin());
    rest_.remove_prefix(count);
    return count > 0;
  }

  bool takeNumber() {
    take('-');
    if (!take('0') && !takeDigits()) return false;
    if (take('.') && !takeDigits()) return false;
    if (!take('e') && !take('E')) return true;
    if (!take('+')) take('-');
    return takeDigits();
  }

  // A string after its opening quote.
  bool takeStringRest() {
    while (!rest_.empty()) {
      const char character = rest_.front();
      rest_.remove_prefix(1);
      if (character == '"') return true;
      if (static_cast<unsigned char>(character) < 0x20) return false;
      if (character == '\\' && !takeEscapeRest()) return false;
    }
    return false;
  }

  // An escape after its backslash. Half a surrogate pair is none.
  bool takeEscapeRest() {
    if (!take('u')) {
      if (rest_.empty() || std::string_view("\"\\/bfnrt").find(rest_.front()) == std::string_view::npos) return false;
      rest_.remove_prefix(1);
      return true;
    }
    const std::optional<unsigned> unit = takeCodeUnit();
    if (!unit || isSecondOfPair(*unit)) return false;
    if (!isFirstOfPair(*unit)) return true;
    if (!take("\\u")) return false;
    const std::optional<unsigned> second = takeCodeUnit();
    return second && isSecondOfPair(*second);
  }

  std::optional<unsigned> takeCodeUnit() {
    constexpr std::size_t length = 4;
    if (rest_.size() < length) return std::nullopt;
    unsigned unit = 0;
    for (const char character : rest_.substr(0, length)) {
      const char letter = static_cast<char>(character | 0x20);
      if (isDigit(character)) {
        unit = unit * 16 + static_cast<unsigned>(character - '0');
      } else if (letter >= 'a' && letter <= 'f') {
        unit = unit * 16 + static_cast<unsigned>(letter - 'a') + 10;
      } else {
        return std::nullopt;
      }
    }
    rest_.remove_prefix(length);
    return unit;
  }

  static bool isFirstOfPair(unsigned unit) { return unit >= 0xD800 && unit < 0xDC00; }
  static bool isSecondOfPair(unsigned unit) { return unit >= 0xDC00 && unit < 0xE000; }

  std::string_view rest_;
};

}  // namespace

bool isJSONText(std::string_view text) {
  if (!isValidUTF8(text)) return false;
  Scanner scanner(text);
  std::vector<bool> isObject;  // for each open container
  while (true) {
    // A value begins.
    scanner.skipBlanks();
    if (scanner.take('{')) {
      scanner.skipBlanks();
      if (!scanner.take('}')) {
        if (!scanner.takeKey()) return false;
        isObject.push_back(true);
        continue;
      }
    } else if (scanner.take('[')) {
      scanner.skipBlanks();
      if (!scanner.take(']')) {
        isObject.push_back(false);
        continue;
      }
    } else if (!scanner.takeScalar()) {
      return false;
    }
    // It has ended, and its containers may end with it.
    scanner.skipBlanks();
    while (!isObject.empty() && scanner.take(isObject.back() ? '}' : ']')) {
      isObject.pop_back();
      scanner.skipBlanks();
    }
    if (isObject.empty()) return scanner.isAtEnd();
    if (!scanner.take(',') || (isObject.back() && !scanner.takeKey())) return false;
  }
}

}  // namespace orvane
