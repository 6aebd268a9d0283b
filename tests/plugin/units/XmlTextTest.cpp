#include "Common/XmlText.h"

#include <gtest/gtest.h>

using namespace orvo;

// Catches an attribute that ends early, a path that changes when it is read, and a file that no reader takes.
TEST(XmlText, IsWellFormedWhateverThePathHolds) {
    EXPECT_EQ(xmlEscaped("a<b> & \"c\" 'd' \xc3\xa4"), "a&lt;b&gt; &amp; &quot;c&quot; 'd' \xc3\xa4");
    EXPECT_EQ(xmlEscaped("&amp;"), "&amp;amp;");
    // Attribute values lose bare tabs and line ends when they are read; other controls and broken UTF-8 end the
    // reading.
    EXPECT_EQ(xmlEscaped("a\tb\nc\rd\x1b\x7f"), "a&#9;b&#10;c&#13;d\xef\xbf\xbd\x7f");
    EXPECT_EQ(xmlEscaped("caf\xe9 \x80"), "caf\xc3\xa9 \xc2\x80");
    EXPECT_EQ(xmlEscaped("\xf0\x9f\x8c\xa5 \xe2\x82\xac"), "\xf0\x9f\x8c\xa5 \xe2\x82\xac");
    EXPECT_EQ(xmlEscaped("\xe0\x80\x80|\xed\xa0\x80|\xf0\x9f\x8c"), // too long, half a pair, cut off
              "\xc3\xa0\xc2\x80\xc2\x80|\xc3\xad\xc2\xa0\xc2\x80|\xc3\xb0\xc2\x9f\xc2\x8c");
    EXPECT_EQ(xmlEscaped("\xef\xbf\xbf"), "\xef\xbf\xbd");
}
