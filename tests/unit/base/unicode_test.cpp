// Path encodings: checked against the compiler's own UTF-8 and UTF-16 literals, by hand-written
// bytes of Java's modified UTF-8, and by a round trip over every UTF-16 code unit and pair.
#include "base/unicode.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <string>

#include "base/text_file.h"
#include "support/test_support.h"

namespace vexa {
namespace {

std::string bytes(const std::u8string& text) { return {text.begin(), text.end()}; }

TEST(Unicode, ConversionsAgreeWithTheCompilersEncodings) {
    struct Case {
        std::u8string utf8;
        std::u16string utf16;
        std::string java;  // modified UTF-8, by hand
    };
    const Case cases[] = {
        {u8"out/net.txt", u"out/net.txt", "out/net.txt"},
        {u8"Ergebnisse-äöü", u"Ergebnisse-äöü", "Ergebnisse-\xC3\xA4\xC3\xB6\xC3\xBC"},
        {u8"Ωμέγα", u"Ωμέγα", "\xCE\xA9\xCE\xBC\xCE\xAD\xCE\xB3\xCE\xB1"},
        {u8"日本語", u"日本語", "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E"},
        // Beyond U+FFFF: Java spells each half of the surrogate pair in three bytes.
        {u8"a😀𝄞b", u"a😀𝄞b",
         "a\xED\xA0\xBD\xED\xB8\x80\xED\xA0\xB4\xED\xB4\x9E"
         "b"},
        {u8"", u"", ""},
    };
    for (const Case& c : cases) {
        std::u16string wide;
        EXPECT_TRUE(utf16_from_utf8(bytes(c.utf8), wide));
        EXPECT_EQ(wide, c.utf16);
        EXPECT_EQ(utf8_from_utf16(c.utf16), bytes(c.utf8));
        std::string from_java;
        EXPECT_TRUE(utf8_from_java(c.java, from_java));
        EXPECT_EQ(from_java, bytes(c.utf8));
    }

    // An unpaired surrogate, which a Java string and a Windows name may hold, survives the way
    // from Java to UTF-16.
    std::string lone;
    EXPECT_TRUE(utf8_from_java("x\xED\xA0\xBDy", lone));
    EXPECT_EQ(lone, "x\xED\xA0\xBDy");
    std::u16string lone_wide;
    EXPECT_TRUE(utf16_from_utf8(lone, lone_wide));
    EXPECT_EQ(lone_wide, (std::u16string{u'x', char16_t{0xD83D}, u'y'}));

    // Java's NUL, and text that is no UTF-8 (a legacy code page's 'ä', overlong or cut-off
    // forms, stray continuation bytes, code points beyond U+10FFFF).
    std::string ignored;
    EXPECT_FALSE(
        utf8_from_java("a\xC0\x80"
                       "b",
                       ignored));
    for (const std::string bad : {"Ergebnisse-\xE4", "\xC0\xAF", "\xE0\x80\x80", "\xE6\x97", "\x80",
                                  "\xF4\x90\x80\x80", "\xF8\x88\x80\x80\x80"}) {
        std::u16string wide;
        EXPECT_FALSE(utf16_from_utf8(bad, wide)) << bad;
    }
}

TEST(Unicode, EveryCodeUnitAndPairRoundTrips) {
    size_t failures = 0;
    auto check = [&](const std::u16string& text, size_t utf8_length) {
        const std::string utf8 = utf8_from_utf16(text);
        std::u16string back;
        if (utf8.size() != utf8_length || !utf16_from_utf8(utf8, back) || back != text) ++failures;
    };
    for (uint32_t unit = 0; unit <= 0xFFFF; ++unit) {
        check(std::u16string(1, static_cast<char16_t>(unit)), unit < 0x80    ? 1
                                                              : unit < 0x800 ? 2
                                                                             : 3);
    }
    for (uint32_t high = 0xD800; high <= 0xDBFF; ++high) {
        for (uint32_t low = 0xDC00; low <= 0xDFFF; ++low) {
            check(std::u16string{static_cast<char16_t>(high), static_cast<char16_t>(low)}, 4);
        }
    }
    EXPECT_EQ(failures, 0u);
}

TEST(Unicode, FilesNamedBeyondAsciiOpenUnderTheirOwnNames) {
    const std::filesystem::path dir = testing::scratch_directory("unicode_files");
    const std::u8string name = u8"Ergebnisse-äöü-日本語-😀.txt";
    const std::string path = bytes((dir / name).u8string());
    FILE* out = open_file(path, "wb");
    ASSERT_NE(out, nullptr);
    std::fputs("edge\t20\n", out);
    std::fclose(out);
    // The name on disk is the one the compiler encodes, not the bytes in another code page.
    EXPECT_TRUE(std::filesystem::exists(dir / name));
    FILE* in = open_file(path, "rb");
    ASSERT_NE(in, nullptr);
    char line[16] = {};
    EXPECT_NE(std::fgets(line, sizeof line, in), nullptr);
    std::fclose(in);
    EXPECT_STREQ(line, "edge\t20\n");
}

}  // namespace
}  // namespace vexa
