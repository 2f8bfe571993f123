// The Unicode rules: nothing is lost, invented or made ill-formed.
#include <string>
#include <string_view>

#include "core/text.h"
#include "core/utf8.h"
#include "fuzz/require.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using namespace orvane;
  using orvane::fuzz::require;
  const std::string_view text(reinterpret_cast<const char*>(data), size);

  const std::string_view trimmed = trimBlanksAndNewlines(text);
  require(trimBlanksAndNewlines(trimmed) == trimmed, "trimming twice is trimming once");
  require(trimBlanks(trimmed) == trimmed, "blanks are among what is trimmed");

  std::size_t kept = 0;
  for (const std::string_view line : splitLines(text)) {
    require(line.data() >= text.data() && line.data() + line.size() <= text.data() + size, "lines lie in the text");
    require(line.find('\n') == std::string_view::npos, "no line holds a line feed");
    kept += line.size();
  }
  require(kept <= size, "lines do not overlap");

  std::size_t pieces = 0;
  for (const std::string_view piece : splitAt(text, "->")) pieces += piece.size() + 2;
  require(pieces == size + 2, "pieces and separators make the text");

  require(characterCount(text) <= size, "a character has a byte of its own");
  require((characterCount(text) == 0) == text.empty(), "text has characters");

  const std::string lower = lowercased(text);
  const std::string capital = capitalized(text);
  if (isValidUTF8(text)) {
    require(isValidUTF8(trimmed) && isValidUTF8(lower) && isValidUTF8(capital), "text stays text");
  }
  require(capitalized(lower).size() > 0 || text.empty(), "capitals do not vanish");
  return 0;
}
