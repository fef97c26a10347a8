#include "host/formats/html_text.h"

#include <gtest/gtest.h>

#include <sstream>

namespace host {
namespace {

std::string WriteText(std::string_view text) {
  std::ostringstream out;
  HtmlWriter(out).Text(text);
  return out.str();
}

TEST(HtmlText, LetsNoTextBecomeMarkup) {
  EXPECT_EQ(WriteText("<b a=\"1\" c='2'>&amp;"),
            "&lt;b a=&quot;1&quot; c=&#39;2&#39;&gt;&amp;amp;");
}

TEST(HtmlText, ShowsWhatTurnsOrHidesText) {
  EXPECT_EQ(WriteText("a\u202Eb\x1b[1m\u200B"), "a\\u202eb\\x1b[1m\\u200b");
}

TEST(HtmlText, LeavesOutWhiteSpaceAround) { EXPECT_EQ(WriteText(" \t a b \r\n"), "a b"); }

TEST(HtmlText, CutsBeforeItEscapes) {
  std::ostringstream out;
  HtmlWriter(out).ShortText("<<<<<", 3);
  EXPECT_EQ(out.str(), "&lt;&lt;…");
}

TEST(HtmlText, CountsWhatItWrote) {
  std::ostringstream out;
  HtmlWriter html(out);
  html.Add("<p>").Text("<").Number(12).Real(1.25);
  EXPECT_EQ(out.str(), "<p>&lt;121.2");
  EXPECT_EQ(html.CountBytes(), out.str().size());
}

TEST(HtmlText, EncodesWhatAnAddressWouldObey) {
  EXPECT_EQ(EncodeForAddress("a/b #\xC3\xA4-._9"), "a%2Fb%20%23%C3%A4-._9");
}

}  // namespace
}  // namespace host
