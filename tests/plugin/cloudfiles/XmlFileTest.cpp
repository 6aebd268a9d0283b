#include "Common/XmlFile.h"
#include "CloudFiles.h"

#include <gmock/gmock.h>
#include <limits>

using namespace orvo;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

std::string repeated(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) text += part;
    return text;
}

struct Refused {
    const char* what;
    std::string text, error;
};

std::vector<Refused> refusedTexts() {
    const std::string deep = repeated("<a>", 100000);
    return {
        {"nothing", "", "f: empty"},
        {"blanks", " \n\t", "f: empty"},
        {"only a byte order mark", "\xef\xbb\xbf", "f: empty"},
        {"no tag", "hello", "f, line 1: text outside of all elements"},
        {"binary", std::string("\x89PNG\0\0", 6), "f: not an XML file in UTF-8 (holds a zero byte)"},
        {"a zero byte later", std::string("<a>\0</a>", 8), "zero byte"},
        {"UTF-16", std::string("\xff\xfe<\0a\0/\0>\0", 10), "zero byte"},
        {"text behind the root", "<a/>\n\nx", "f, line 3: text outside of all elements"},
        {"an open element", "<a><b></b>\n", "f, line 2: the end tag of an element is missing"},
        {"a surplus end tag", "<a/></a>", "an end tag without an element"},
        {"crossed tags", "<a><b></a></b>", "f, line 1: "},
        {"an open tag", "<a b=\"1\"", "a tag is cut off or not well formed"},
        {"an open value", "<a b=\"1></a>", "a tag is cut off or not well formed"},
        {"a value without quotes", "<a b=1/>", "a tag is cut off or not well formed"},
        {"an attribute without a value", "<a b/>", "a tag is cut off or not well formed"},
        {"a doubled attribute", "<a b='1' b='2'/>", "f, line "},
        {"a tag without a name", "<a>< b/></a>", "a tag without a name"},
        {"an open comment", "<a/><!-- b", "the end of a tag or comment is missing"},
        {"an open declaration", "<?xml version=\"1.0\"", "the XML declaration is not well formed"},
        {"deep nesting", deep + repeated("</a>", 100000), "f, line 1: elements are nested too deeply"},
        {"deep nesting without an end", deep, "elements are nested too deeply"},
        // In each of these a plain count of brackets is misled: the parser would nest 100,000 elements.
        {"end tags in values", repeated("<a b='</a>'>", 100000), "elements are nested too deeply"},
        {"end tags in comments", repeated("<a><!--></a>-->", 100000), "elements are nested too deeply"},
        {"end tags in CDATA", repeated("<a><![CDATA[></a>]]>", 100000), "elements are nested too deeply"},
        {"elements in a value of a nameless tag", "<1 b='>" + deep + "'/>", "a tag without a name"},
        {"elements in a value of the declaration", "<?xml b='>" + deep + "'?>",
         "the XML declaration is not well formed"},
        {"a value hidden in the declaration", "<?xml b=\"c=' version='\"?><a b='" + deep + "'/>",
         "the XML declaration is not well formed"},
        {"many attributes", "<a " + repeated("b=''", 100000) + "/>", "too many attributes"},
        {"many elements", "<a>" + repeated("<b/>", 2100000) + "</a>", "too many elements"},
        {"a large file", std::string(XmlFile::maxBytes + 1, ' '), "f: larger than 64 MB"},
    };
}

} // namespace

// Catches a parser that overflows the stack, hangs, reads beyond the text, or takes half a file for a whole one; and a
// message that does not tell where.
TEST(XmlFile, RefusesWithAReason) {
    for (const Refused& refused : refusedTexts()) {
        XmlFile file;
        EXPECT_FALSE(file.parse(refused.text, "f")) << refused.what;
        EXPECT_THAT(file.error(), HasSubstr(refused.error)) << refused.what;
        EXPECT_EQ(file.root("a"), nullptr) << refused.what;
        EXPECT_EQ(file.text(nullptr, "b"), "");
        EXPECT_EQ(file.real(nullptr, "b"), 0.0);
    }
}

// Catches a scan that is stricter than XML files in use: marks, declarations, comments, quotes, entities, any bytes.
TEST(XmlFile, ReadsWhatOtherProgramsWrite) {
    const std::string deep = repeated("<a>", 100000);
    const struct {
        std::string text, value;
    } cases[] = {
        {"<a b=\"c\"/>", "c"},
        {"\xef\xbb\xbf<?xml version='1.0' encoding='UTF-8' standalone=\"yes\" ?>\r\n<a\r\n\tb = 'c'\r\n\t>\r\n</a>\r\n",
         "c"},
        {"<!DOCTYPE a><?style sheet?><!-- <a b='x'> --><a b='\"c>d\"'><b></b><![CDATA[<c>]]>text</a><!-- -->",
         "\"c>d\""},
        {"<a b='&lt;&gt;&amp;&quot;&apos;&#65;&#x42;'/>", "<>&\"'AB"},
        {"<a b='\xc3\xa4\xe2\x82\xac'/>", "\xc3\xa4\xe2\x82\xac"},
        {"<a b='\xe4\xff'/>", "\xe4\xff"},
        // The first byte of a character must not hide the quote behind it: the rest would be elements.
        {"<a b=\"\xc3\"><c d=\">" + deep + "\"/></a>", "\xc3"},
        {"<\xc3\xa4/><a b=''/>", ""},
    };
    for (const auto& [text, value] : cases) {
        XmlFile file;
        EXPECT_TRUE(file.parse(text, "f")) << file.error();
        EXPECT_EQ(file.text(file.root("a"), "b"), value) << text;
        EXPECT_THAT(file.error(), IsEmpty());
    }
    XmlFile deepest;
    const std::string text = repeated("<a>", XmlFile::maxDepth - 1) + "<a/>" + repeated("</a>", XmlFile::maxDepth - 1);
    EXPECT_TRUE(deepest.parse(text, "f")) << deepest.error();
}

// Catches a problem that is replaced by one that follows from it, or told without its place.
TEST(XmlFile, KeepsTheFirstProblem) {
    XmlFile file;
    ASSERT_TRUE(file.parse("<a>\n <b x='a lot' y='no' s='1 2' w='w'/></a>", "dir/f.xml"));
    const TiXmlElement* b = file.child(file.root("a"), "b");
    ASSERT_NE(b, nullptr);
    file.real(b, "x");
    EXPECT_EQ(file.error(), "dir/f.xml, line 2: element b: attribute \"x\" is no number: \"a lot\"");
    file.text(b, "missing");
    EXPECT_EQ(file.child(b, "c"), nullptr);
    EXPECT_THAT(file.error(), HasSubstr("a lot"));
    for (const auto& [read, error] :
         std::initializer_list<std::pair<void (*)(XmlFile&, const TiXmlElement*), const char*>>{
             {[](XmlFile&f, const TiXmlElement*e) { f.text(e, "z"); }, "element b: attribute \"z\" is missing"},
             {[](XmlFile&f, const TiXmlElement*e) { f.real(e, "y"); }, "attribute \"y\" is no number: \"no\""},
             {[](XmlFile&f, const TiXmlElement*e) { f.triple(e, "s"); }, "is not three numbers: \"1 2\""},
             {[](XmlFile&f, const TiXmlElement*e) { f.flag(e, "y"); }, "attribute \"y\" is no integer"},
             {[](XmlFile&f, const TiXmlElement*e) { f.word(e, "w"); }, "attribute \"w\" is no integer"},
             {[](XmlFile&f, const TiXmlElement*e) { f.child(e, "c"); }, "f, line 1: element b: no element c in it"}}) {
        XmlFile again;
        ASSERT_TRUE(again.parse("<b y='no' s='1 2' w='w'/>", "f"));
        read(again, again.root("b"));
        EXPECT_THAT(again.error(), HasSubstr(error));
    }
}

// Catches a file that is refused, or taken without a word, for a number out of range; a limit of the wrong end or type;
// and warnings without end.
TEST(XmlFile, HoldsNumbersAtTheirLimits) {
    XmlFile file;
    ASSERT_TRUE(file.parse("<b low='-1' high='1e999' single='-1e39' word='4294967296' three='0 1e39 1'/>", "f"));
    const TiXmlElement* b = file.root("b");
    EXPECT_EQ(file.real(b, "low", {0, 10}), 0);
    EXPECT_EQ(file.warnings().back(), "f, line 1: element b: attribute \"low\" is out of range: \"-1\", held at 0");
    EXPECT_EQ(file.real(b, "low", {.min = 0, .below = 2}), 2);
    EXPECT_EQ(file.real(b, "high", {0, 10}), 10);
    EXPECT_EQ(file.real(b, "high"), std::numeric_limits<double>::max());
    EXPECT_EQ(file.single(b, "single"), -std::numeric_limits<float>::max());
    EXPECT_EQ(file.triple(b, "three"), (Vector3{0, std::numeric_limits<float>::max(), 1}));
    EXPECT_EQ(file.word(b, "word"), 0xffffffff);
    EXPECT_THAT(file.warnings(), testing::SizeIs(7));
    EXPECT_EQ(file.single(b, "low", {-1, 0}), -1) << "the ends are in the range";
    EXPECT_TRUE(file.ok()) << file.error();
    for (int i = 0; i < 16; ++i) file.real(b, "low", {0, 10});
    EXPECT_THAT(file.warnings(), testing::SizeIs(XmlFile::maxWarnings + 1));
    EXPECT_EQ(file.warnings().back(), "f: 3 more values are out of range");
}

using XmlFileOnDisk = CloudFiles;

// Catches a folder or an endless device that is read as a file, and a failure without the file's name.
TEST_F(XmlFileOnDisk, TellsWhatCannotBeRead) {
    for (const auto& [name, error] :
         std::initializer_list<std::pair<std::string, const char*>>{{path("none.xml"), ": cannot be read: "},
                                                                    {folder_.string(), ": cannot be read: "},
                                                                    {"", ": cannot be read: "},
#ifndef _WIN32
                                                                    {"/dev/zero", ": larger than 64 MB"},
#endif
                                                                    {write("empty.xml", ""), ": empty"}}) {
        XmlFile file;
        EXPECT_FALSE(file.load(name));
        EXPECT_THAT(file.error(), testing::StartsWith(name + error));
    }
    XmlFile file;
    EXPECT_TRUE(file.load(changed(write("Mixed.xml", "<a/>"), "Mixed", "mIXED")))
        << "stored paths have lost their case";
}
