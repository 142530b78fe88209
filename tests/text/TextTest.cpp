#include "text/MacRoman.h"
#include "text/Printable.h"
#include "text/Utf8.h"

#include <gtest/gtest.h>

namespace {

using namespace Kest::Text;

TEST(Utf8, EveryCharacterIsReadAsItIsWritten)
{
    for (char32_t code = 0; code <= 0x10FFFF; code += code == 0xD7FF ? 0x801 : 1) {
        std::string text;
        append(text, code);
        const auto followed = text + "\x80";
        const auto character = firstCharacter(followed);
        ASSERT_TRUE(character.isValid && character.code == code && character.bytes == text) << unsigned(code);
    }
}

TEST(Utf8, NoByteOfOtherSequencesIsACharacter)
{
    for (const std::string bytes :
         {"\x80", "\xBF", "\xC2", "\xE2\x82", "\xF0\x9F\x98", "\xC0\x80", "\xC1\xBF", "\xE0\x80\x80",
          "\xE0\x9F\xBF", "\xED\xA0\x80", "\xED\xBF\xBF", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
          "\xF7\xBF\xBF\xBF", "\xF8\x88\x80\x80\x80", "\xFE", "\xFF"}) {
        std::string replaced = "é";
        for (std::size_t i = 0; i < bytes.size(); ++i)
            replaced += "\uFFFD";
        EXPECT_FALSE(isUtf8("é" + bytes + "a")) << escapedBytes(bytes);
        EXPECT_EQ(toUtf8("é" + bytes + "a"), replaced + "a");
    }
}

TEST(Printable, HasNoControlCharactersAndOneFormOfEachNumber)
{
    const std::string text = "a\x1B[31m\n\x7F \u009B2J\u0085é\u00A0€😀";
    EXPECT_EQ(printable(text + "\xC2"), "a?[31m?? ?2J?é\u00A0€😀\uFFFD");
    EXPECT_EQ(escaped(text + "\xC2"), "a\\x1B[31m\\x0A\\x7F \\xC2\\x9B2J\\xC2\\x85é\u00A0€😀\\xC2");
    EXPECT_EQ(escapedBytes("~\x7F\xE9\n"), "~\\x7F\\xE9\\x0A");
    EXPECT_EQ(printable(26) + " " + printable(-0.1F) + " " + printable(1234567.5F) + " " + printable(3e9F),
              "26 -0.1 1234567.5 3e+09");
}

TEST(MacRoman, EachByteIsOneCharacterAndBack)
{
    EXPECT_EQ(macRomanToUtf8("Gr\x9F\xA7\x65 \xDB\xF0\xFF"), "Grüße €\uF8FF\u02C7");
    for (int i = 1; i < 256; ++i) {
        const std::string byte(1, static_cast<char>(i));
        EXPECT_EQ(utf8ToMacRoman(macRomanToUtf8(byte)), byte);
    }
    EXPECT_EQ(utf8ToMacRoman("a日\xFF😀"), "a???");
}

} // namespace
