// Charsets, HTML, RTF and dates.
#include "import/import_fixture.h"
#include "mail/charset.h"
#include "mail/html_text.h"
#include "mail/local_date.h"
#include "mail/rtf_text.h"

namespace tidyfold {
namespace {

TEST(Charset, Reads_Declared_Wrong_And_Missing_Charsets) {
  struct Case {
    std::string_view bytes, charset, text;
  };
  const Case cases[] = {
      {"plain", "us-ascii", "plain"},
      {"caf\xE9", "", "café"},            // nothing declared: not UTF-8, so Windows-1252
      {"caf\xC3\xA9", "", "café"},        // nothing declared, and UTF-8
      {"caf\xC3", "utf-8", "caf\uFFFD"},  // declared, broken
      {"\x93q\x94 \x80", "ISO-8859-1", "“q” €"},
      {"\xF0\xD2\xC9", "koi8-r", "При"},
      {"\x1B$B$\"\x1B(B", "iso-2022-jp", "あ"},
      {"a\x82", "shift_jis", "a\uFFFD"},  // ends within a character
      {std::string_view("a\0b\0", 4), "utf-16le", "ab"},
  };
  for (const Case& c : cases) EXPECT_EQ(To_Utf8(c.bytes, c.charset), c.text) << c.charset;
  EXPECT_EQ(To_Utf8("\xCF\xF0", Code_Page_Charset(1251)), "Пр");
  EXPECT_EQ(To_Utf8("\xE9", Code_Page_Charset(4294967295)), "é");
}

TEST(Charset, Long_Text_Crosses_The_Converter_S_Buffer) {
  std::string text;
  for (int i = 0; i < 5000; ++i) text += "é";
  EXPECT_EQ(To_Utf8(std::string(5000, '\xE9'), "iso-8859-15"), text);
}

TEST(Html, Becomes_What_A_Reader_Sees) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {"<p>One\n two</p><p>three</p>", "One two\n\nthree"},
      {"<table><tr><td>a</td><td>b</td></tr><tr><td>c</td></tr></table>", "a b\nc"},
      {"<head><title>T</title><style>p{}</style></head><script>if (a<b) x();</script>text", "text"},
      {"<!-- <p>hidden</p> -->shown<![endif]>", "shown"},
      {"a &amp;&lt;&gt; b&nbsp;c &#8364; &#x20AC; &eacute; &bogus; & &#150; &#0; d",
       "a &<> b c € € é &bogus; & – &#0; d"},
      {"<a title=\"a > b\" href='x>y'>link</a>", "link"},
      {"<ul><li>one<li>two</ul>", "- one\n- two"},
      {"<pre>a\n  b</pre>c", "a\n  b\nc"},
      {"<style>never closed", ""},
  };
  for (const auto& [html, text] : cases) EXPECT_EQ(Html_To_Text(html), text) << html;
  EXPECT_EQ(Html_Charset("<META http-equiv=Content-Type content='text/html; charset=KOI8-R'>"), "koi8-r");
  EXPECT_EQ(Html_Charset("<p>charset</p>"), "");
}

TEST(Rtf, Becomes_What_A_Reader_Sees) {
  const std::pair<std::string_view, std::string_view> cases[] = {
      {R"({\rtf1\ansi\ansicpg1251{\fonttbl{\f0 Arial;}}\f0\b Hi\b0  \'cf\'f0\par next})", "Hi Пр\nnext"},
      {R"({\rtf1\uc1 \u8364?x\u-10179?\u-8704?y})", "€x😀y"},
      {R"({\rtf1{\*\htmltag <p>}seen{\v hidden}\v also\v0  shown\tab\{\}\\})", "seen shown\t{}\\"},
      {R"({\rtf1{\pict\bin3 }}}}after})", "after"},
      {R"({\rtf1\uc2\u233 \'c3\'a9!})", "é!"},
      {R"(}}}no groups\)", "no groups"},
  };
  for (const auto& [rtf, text] : cases) EXPECT_EQ(Rtf_To_Text(rtf), text) << rtf;
}

TEST(Local_Date, Follows_The_Zone_And_Knows_No_Date) {
  const In_New_York zone;
  EXPECT_DOUBLE_EQ(Local_Date(1030084373), Day(37491, 2, 32, 53));  // 2002-08-23 06:32:53 UTC, in summer
  EXPECT_DOUBLE_EQ(Local_Date_From_Filetime(116444736000000000), Day(25568, 19));  // 1970-01-01 UTC
  EXPECT_DOUBLE_EQ(Date_From_Floating_Filetime(116444736000000000), Day(25569));
  EXPECT_EQ(Local_Date_From_Filetime(0x0CB34557A3DD4000), no_date);  // Outlook's own, 4501-01-01
  EXPECT_EQ(Local_Date_From_Filetime(0), no_date);
  EXPECT_EQ(Local_Date_From_Filetime(~std::uint64_t{0}), no_date);
  EXPECT_EQ(Date_From_Calendar(2003, 2, 29, 0, 0, 0), no_date);
}

}  // namespace
}  // namespace tidyfold
