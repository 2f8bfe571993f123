// Random texts for property tests.
#pragma once

#include <gtest/gtest.h>
#include <rapidcheck.h>
#include <rapidcheck/gtest.h>

#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

#include "core/utf8.h"

namespace orvane::test {

/// A Unicode scalar value; one in two is ASCII.
inline rc::Gen<std::int32_t> anyCharacter() {
  return rc::gen::oneOf(rc::gen::inRange<std::int32_t>(0, 0x80), rc::gen::inRange<std::int32_t>(0x80, 0xD800),
                        rc::gen::inRange<std::int32_t>(0, 0x80), rc::gen::inRange<std::int32_t>(0xE000, 0x110000));
}

/// Valid UTF-8.
inline rc::Gen<std::string> anyText() {
  return rc::gen::map(rc::gen::container<std::vector<std::int32_t>>(anyCharacter()),
                      [](const std::vector<std::int32_t>& codePoints) {
                        std::string text;
                        for (const std::int32_t codePoint : codePoints) appendUTF8(text, codePoint);
                        return text;
                      });
}

/// Several of `pieces` in a row, in any order and number.
inline rc::Gen<std::string> textOf(std::vector<std::string> pieces) {
  return rc::gen::map(rc::gen::container<std::vector<std::string>>(rc::gen::elementOf(std::move(pieces))),
                      [](const std::vector<std::string>& chosen) {
                        std::string text;
                        for (const std::string& piece : chosen) text += piece;
                        return text;
                      });
}

/// Text with many blanks, newlines, clusters and offending bytes.
inline rc::Gen<std::string> troublesomeText() {
  return textOf({" ",      "\t",     "\n",         "\r",     "\r\n", "\v",       "\f",     "\u0085", "\u00A0", "\u2003",
                 "\u2028", "\u2029", "\u3000",     "a",      "É",    "\u0130",   "\u0301", "한",     "\u1112", "\u1161",
                 "😀",      "\u200D", "\U0001F1E6", "\u0600", "\xC2", "\xE2\x80", "\x80",   "\xA8",   "\xFF"});
}

}  // namespace orvane::test
