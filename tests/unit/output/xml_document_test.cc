#include "output/xml_document.h"

#include <gtest/gtest.h>

#include <string>

#include "support/loaded_site.h"

namespace vela {
namespace {

using support::CapturedResponse;

constexpr char kDeclaration[] = "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
constexpr char kRoot[] =
    "<!--Vela Search Engine 7-->\n"
    "<rss version=\"2.0\" xmlns:opensearch=\"http://a9.com/-/spec/opensearch/1.1/\" "
    "xmlns:atom=\"http://www.w3.org/2005/Atom\" "
    "xmlns:vela=\"https://vela-search.example/ns/response/1.0/\">\n"
    "<channel>\n";

struct Document {
  Settings settings;
  CapturedResponse captured{true};

  Document() {
    Set(settings.Charset, "utf-8");
    Set(settings.Version, "7");
    Set(settings.XMLTitle, "Oaks");
    Set(settings.XMLDesc, "All oaks");
    Set(settings.XMLURL, "https://oaks.example/");
  }
  std::string Open(bool listSettings = false) {
    WriteXmlOpening(captured.response, settings, listSettings);
    return captured.Text();
  }
};

constexpr char kChannel[] =
    "<title>Oaks</title>\n<description>All oaks</description>\n"
    "<link>https://oaks.example/</link>\n";

TEST(XmlDocument, OpeningWithoutOptionalParts) {
  EXPECT_EQ(Document().Open(), std::string(kDeclaration) + kRoot + kChannel);
}

TEST(XmlDocument, StyleSheetStandsBehindTheDeclaration) {
  Document document;
  Set(document.settings.XMLXSLTURL, "/oak.xsl");
  EXPECT_EQ(document.Open(), std::string(kDeclaration) +
                                 "<?xml-stylesheet type=\"text/xsl\" href=\"/oak.xsl\"?>\n" +
                                 kRoot + kChannel);
}

TEST(XmlDocument, OpenSearchDescriptionStandsBehindTheChannel) {
  Document document;
  Set(document.settings.XMLOpenSearchDescURL, "/os.xml");
  EXPECT_EQ(document.Open(), std::string(kDeclaration) + kRoot + kChannel +
                                 "<opensearch:link rel=\"search\" href=\"/os.xml\" "
                                 "type=\"application/opensearchdescription+xml\" />\n");
}

TEST(XmlDocument, SettingsAreListedWhereAskedFor) {
  const std::string text = Document().Open(true);
  const std::string before = std::string(kDeclaration) + kRoot + kChannel;
  EXPECT_EQ(text.substr(0, before.size()), before);
  EXPECT_EQ(text.substr(before.size(), 28), "<vela:setting name=\"UseUTF8\"");
}

TEST(XmlDocument, Closing) {
  Document document;
  WriteXmlClosing(document.captured.response);
  EXPECT_EQ(document.captured.Text(), "</channel>\n</rss>");
}

}  // namespace
}  // namespace vela
