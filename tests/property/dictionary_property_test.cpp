#include <string>
#include <vector>

#include "tests/property/generators.h"
#include "tools/local/dictionary.h"

namespace orvane::test {
namespace {

rc::Gen<std::string> dictionaryText() {
  return textOf({"[replacements]",
                 "[Fillers]",
                 "[CORRECTIONS]",
                 "[disabled]",
                 "[",
                 "]",
                 "\n",
                 "\n",
                 "\r\n",
                 "\u2028",
                 " ",
                 "\u3000",
                 "#",
                 ",",
                 "->",
                 "-",
                 ">",
                 "um",
                 "Ä",
                 "\xFF",
                 "\u0130"});
}

rc::Gen<std::string> header() {
  return rc::gen::elementOf(
      std::vector<std::string>{"[replacements]\n", "[fillers]\n", "[Corrections]\r\n", " [DISABLED] \n"});
}

template <class Element>
std::vector<Element> concatenated(std::vector<Element> first, const std::vector<Element>& second) {
  first.insert(first.end(), second.begin(), second.end());
  return first;
}

/// A dictionary file that holds `overlay`. Each line begins with a comma, lest an entry be taken for a comment or
/// header.
std::string printed(const ReplacementsOverlay& overlay) {
  std::string text = "[replacements]\n";
  for (const auto& pair : overlay.additions) text += "," + pair.spoken + " -> " + pair.written + "\n";
  text += "[fillers]\n";
  for (const std::string& entry : overlay.fillers) text += "," + entry + "\n";
  text += "[corrections]\n";
  for (const std::string& entry : overlay.corrections) text += "," + entry + "\n";
  text += "[disabled]\n";
  for (const std::string& entry : overlay.disabled) text += "," + entry + "\n";
  return text;
}

RC_GTEST_PROP(DictionaryProperty, AnyTextParsesAndParsesAlikeEachTime, ()) {
  const std::string text = *rc::gen::oneOf(dictionaryText(), anyText(), rc::gen::arbitrary<std::string>());
  RC_ASSERT(parseReplacementsOverlay(text) == parseReplacementsOverlay(text));
}

RC_GTEST_PROP(DictionaryProperty, WhatWasParsedParsesAgainWhenPrinted, ()) {
  const std::string text = *header() + *dictionaryText();
  const ReplacementsOverlay overlay = parseReplacementsOverlay(text);
  RC_CLASSIFY(!overlay.additions.empty(), "replacements");
  RC_ASSERT(parseReplacementsOverlay(printed(overlay)) == overlay);
}

RC_GTEST_PROP(DictionaryProperty, FilesThatBeginWithAHeaderAddUp, ()) {
  const std::string first = *header() + *dictionaryText() + "\n";
  const std::string second = *header() + *dictionaryText();
  const ReplacementsOverlay ofFirst = parseReplacementsOverlay(first);
  const ReplacementsOverlay ofSecond = parseReplacementsOverlay(second);
  const ReplacementsOverlay ofBoth = parseReplacementsOverlay(first + second);
  RC_ASSERT(ofBoth.additions == concatenated(ofFirst.additions, ofSecond.additions));
  RC_ASSERT(ofBoth.fillers == concatenated(ofFirst.fillers, ofSecond.fillers));
  RC_ASSERT(ofBoth.corrections == concatenated(ofFirst.corrections, ofSecond.corrections));
  RC_ASSERT(ofBoth.disabled == concatenated(ofFirst.disabled, ofSecond.disabled));
}

RC_GTEST_PROP(DictionaryProperty, TheKindOfNewlineDoesNotMatter, ()) {
  const std::vector<std::string> lines = *rc::gen::container<std::vector<std::string>>(
      rc::gen::oneOf(header(), textOf({"a", " ", ",", "->", "#", "-", ">"})));
  const auto textWith = [&lines](const std::string& newline) {
    std::string text;
    for (const std::string& line : lines) text += line + newline;
    return text;
  };
  for (const std::string newline : {"\r\n", "\r", "\u0085", "\u2029"}) {
    RC_ASSERT(parseReplacementsOverlay(textWith(newline)) == parseReplacementsOverlay(textWith("\n")));
  }
}

}  // namespace
}  // namespace orvane::test
