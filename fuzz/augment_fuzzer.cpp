// The front matter of a user's augment: what is accepted is complete and text.
#include <string_view>

#include "core/text.h"
#include "core/utf8.h"
#include "fuzz/require.h"
#include "tools/local/augments.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* data, std::size_t size) {
  using orvane::fuzz::require;
  const std::string_view text(reinterpret_cast<const char*>(data), size);
  const auto augment = orvane::parseUserAugment(text, "my-own");
  const std::string_view trimmed = orvane::trimBlanksAndNewlines(text);
  const bool isDelimited = trimmed.starts_with("---") && trimmed.substr(3).find("\n---") != std::string_view::npos;
  require(augment.has_value() == isDelimited, "an augment is what begins with a closed front matter");
  if (!augment.has_value()) return 0;
  require(augment->id == "my-own" && !augment->isBuiltIn && augment->slotCost == 1,
          "the rest is not the file's to say");
  for (const std::string& value : {augment->name, augment->category, augment->axis}) {
    require(!value.empty(), "every value has a default");
    require(!value.starts_with('"') && !value.ends_with('"'), "quotes are taken off");
    if (orvane::isValidUTF8(text)) require(orvane::isValidUTF8(value), "text gives text");
  }
  return 0;
}
