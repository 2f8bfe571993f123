#include <optional>
#include <string>

#include "core/text.h"
#include "tests/property/generators.h"
#include "tools/local/augments.h"

namespace orvane::test {
namespace {

rc::Gen<std::string> augmentText() {
  return textOf({"---", "---", "\n---", "\n", "\r\n", "name", "category", "axis", ":", "\"", " ", "\u3000", "x", "Ä",
                 "-", "\u2028", "\xFF"});
}

RC_GTEST_PROP(AugmentProperty, AnyTextParsesOrIsRefusedAlikeEachTime, ()) {
  const std::string text = *rc::gen::oneOf(augmentText(), anyText(), rc::gen::arbitrary<std::string>());
  const std::optional<CatalogAugment> augment = parseUserAugment(text, "an-id");
  RC_ASSERT(parseUserAugment(text, "an-id") == augment);
  if (!augment) return;
  RC_ASSERT(augment->id == "an-id");
  RC_ASSERT(!augment->name.empty());
  RC_ASSERT(!augment->category.empty());
  RC_ASSERT(!augment->axis.empty());
  RC_ASSERT(!augment->isBuiltIn);
  RC_ASSERT(augment->slotCost == 1);
}

RC_GTEST_PROP(AugmentProperty, OnlyTheTwoMarksDecideWhetherTextIsAnAugment, ()) {
  const std::string text = *augmentText();
  const std::string trimmed(trimBlanksAndNewlines(text));
  const bool isAugment = trimmed.starts_with("---") && trimmed.find("\n---", 3) != std::string::npos;
  RC_CLASSIFY(isAugment, "augments");
  RC_ASSERT(parseUserAugment(text, "an-id").has_value() == isAugment);
}

RC_GTEST_PROP(AugmentProperty, QuotedValuesComeBackWhole, ()) {
  const std::string value = *rc::gen::suchThat(textOf({"a", "Ä", " ", "\u3000", ":", "-", "#"}),
                                               [](const std::string& candidate) { return !candidate.empty(); });
  const std::string body = *anyText();
  const std::optional<CatalogAugment> augment = parseUserAugment("---\nname: \"" + value + "\"\n---\n" + body, "an-id");
  RC_ASSERT(augment.has_value());
  RC_ASSERT(augment->name == value);
  RC_ASSERT(augment->category == "meta");
}

}  // namespace
}  // namespace orvane::test
