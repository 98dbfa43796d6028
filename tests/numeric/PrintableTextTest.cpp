#include <gtest/gtest.h>
#include <string>

#include "numeric/PrintableText.h"

namespace gravlin {
namespace {

using namespace std::string_literals;

TEST(PrintableText, WhatCanBeShownStaysAsItIs) {
  for (const char* text :
       {"", "a b.ply2", R"(C:\mesh)", "Gr\u00fc\u00dfe", "\u65e5\u672c\u8a9e", "\u00a0",
        "\u07ff \u0800 \ud7ff \ue000 \uffff", "\U00010000\U0010ffff"}) {
    EXPECT_EQ(printable(text), text);
  }
}

TEST(PrintableText, EveryControlCharacterIsEscaped) {
  EXPECT_EQ(printable("a\nb\tc\rd"), R"(a\nb\tc\rd)");
  EXPECT_EQ(printable("\x1b[31m\a\x7f"), R"(\x1b[31m\x07\x7f)");
  EXPECT_EQ(printable("a\0b"s), R"(a\x00b)");
  // The second half of them, in two bytes, of which a terminal makes escape sequences, too.
  EXPECT_EQ(printable("\u0080\u009b\u009f"), R"(\xc2\x80\xc2\x9b\xc2\x9f)");
}

TEST(PrintableText, BytesThatAreNoCharacterAreEscapedOneByOne) {
  EXPECT_EQ(printable("gr\xfcn"), R"(gr\xfcn)");
  EXPECT_EQ(printable("\x9b"
                      "31m"),
            R"(\x9b31m)");
  EXPECT_EQ(printable("\xe6\x97"), R"(\xe6\x97)") << "cut off";
  EXPECT_EQ(printable("\xe6\x97x"), R"(\xe6\x97x)");
  EXPECT_EQ(printable("\xc0\x8a"), R"(\xc0\x8a)") << "a line end in two bytes";
  EXPECT_EQ(printable("\xe0\x82\x9b"), R"(\xe0\x82\x9b)") << "a control character in three";
  EXPECT_EQ(printable("\xf0\x80\x82\x9b"), R"(\xf0\x80\x82\x9b)");
  EXPECT_EQ(printable("\xed\xa0\x80"), R"(\xed\xa0\x80)") << "half of a surrogate pair";
  EXPECT_EQ(printable("\xf4\x90\x80\x80\xff"), R"(\xf4\x90\x80\x80\xff)");
}

TEST(PrintableText, AnEscapedTextStaysAsItIs) {
  const std::string once = printable("\n\x1b\xff");
  EXPECT_EQ(printable(once), once);
}

}  // namespace
}  // namespace gravlin
