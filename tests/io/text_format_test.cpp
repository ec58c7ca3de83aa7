// Escapes and numbers of the model file.

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <sstream>

#include "io/number_format.h"
#include "io/xml_escape.h"

using namespace modelyne;

TEST(XmlEscape, EscapesExactlyTheFiveCharacters) {
  EXPECT_EQ(io::escapeXml("a\"b&c'd<e>f"), "a&quot;b&amp;c&apos;d&lt;e&gt;f");
  // Control characters, newlines and UTF-8 pass unchanged.
  EXPECT_EQ(io::escapeXml("x\ny\t\x01\xC3\xA9"), "x\ny\t\x01\xC3\xA9");
}

TEST(XmlEscape, DecodesOnlyTheFiveNamedEntities) {
  EXPECT_EQ(io::decodeXml("&lt;&gt;&amp;&quot;&apos;"), "<>&\"'");
  EXPECT_EQ(io::decodeXml("&#65;&#x41;&nbsp;&amp"), "&#65;&#x41;&nbsp;&amp");
  EXPECT_EQ(io::decodeXml("a & b &amp;amp;"), "a & b &amp;");
  std::string reused = "previous content";
  io::assignDecoded(reused, "x&lt;y");
  EXPECT_EQ(reused, "x<y");
}

// Each value against what a default-configured std::ostream writes.
TEST(NumberFormat, MatchesDefaultStream) {
  const float values[] = {120.0f, 12.25f, 1234567.0f, 0.0f, -0.0f, 0.1f, 1e-7f, 3.4e38f, -42.5f, 100000.0f,
                          999999.5f, std::numeric_limits<float>::infinity(), -std::numeric_limits<float>::infinity()};
  for (float v : values) {
    std::ostringstream os;
    os << v;
    EXPECT_EQ(io::formatFloat(v), os.str()) << v;
  }
  EXPECT_EQ(io::formatFloat(120.0f), "120");
  EXPECT_EQ(io::formatFloat(12.25f), "12.25");
  EXPECT_EQ(io::formatFloat(1234567.0f), "1.23457e+06");
  EXPECT_EQ(io::formatFloat(0.1f), "0.1");
}

TEST(NumberFormat, ParsesLikeStof) {
  float v = -1.0f;
  EXPECT_EQ(io::parseFloat("  12.5", v), io::NumberStatus::ok);
  EXPECT_EQ(v, 12.5f);
  EXPECT_EQ(io::parseFloat("+3", v), io::NumberStatus::ok);
  EXPECT_EQ(v, 3.0f);
  EXPECT_EQ(io::parseFloat("-1e3", v), io::NumberStatus::ok);
  EXPECT_EQ(v, -1000.0f);
  EXPECT_EQ(io::parseFloat("0x10", v), io::NumberStatus::ok);
  EXPECT_EQ(v, 16.0f);
  EXPECT_EQ(io::parseFloat("7px", v), io::NumberStatus::ok);  // longest prefix, as stof
  EXPECT_EQ(v, 7.0f);
  EXPECT_EQ(io::parseFloat("inf", v), io::NumberStatus::ok);
  EXPECT_TRUE(std::isinf(v));
  EXPECT_EQ(io::parseFloat("nan", v), io::NumberStatus::ok);
  EXPECT_TRUE(std::isnan(v));

  v = 5.0f;
  EXPECT_EQ(io::parseFloat("", v), io::NumberStatus::invalid);
  EXPECT_EQ(io::parseFloat("abc", v), io::NumberStatus::invalid);
  EXPECT_EQ(io::parseFloat("+-1", v), io::NumberStatus::invalid);
  EXPECT_EQ(io::parseFloat("-", v), io::NumberStatus::invalid);
  EXPECT_EQ(io::parseFloat("1e999", v), io::NumberStatus::outOfRange);
  EXPECT_EQ(v, 5.0f);  // untouched on failure
  EXPECT_EQ(io::numberStatusText(io::NumberStatus::invalid, "stof"), "invalid stof argument");
  EXPECT_EQ(io::numberStatusText(io::NumberStatus::outOfRange, "stoi"), "stoi argument out of range");
}

TEST(NumberFormat, ParsesIntLikeStoi) {
  std::int32_t v = 0;
  EXPECT_EQ(io::parseInt(" -12x", v), io::NumberStatus::ok);
  EXPECT_EQ(v, -12);
  EXPECT_EQ(io::parseInt("2147483647", v), io::NumberStatus::ok);
  EXPECT_EQ(io::parseInt("-2147483648", v), io::NumberStatus::ok);
  EXPECT_EQ(v, -2147483647 - 1);
  EXPECT_EQ(io::parseInt("2147483648", v), io::NumberStatus::outOfRange);
  EXPECT_EQ(io::parseInt("99999999999999999999999", v), io::NumberStatus::outOfRange);
  EXPECT_EQ(io::parseInt("one", v), io::NumberStatus::invalid);
  EXPECT_EQ(io::parseInt("", v), io::NumberStatus::invalid);
}
