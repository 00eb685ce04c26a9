#include "indexer/publish/open_search.h"

#include <gtest/gtest.h>

namespace vela::indexer {
namespace {

TEST(OpenSearch, DescribesTheSearch) {
  SiteConfig config;
  config.searchAddress = "https://x.example/find/search.cgi";
  config.searchName = "Books & music of Ashdale";
  config.searchDescription = "All <pages>";
  EXPECT_EQ(
      OpenSearchDocument(config, true, IndexCharset("iso-8859-2")),
      "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
      "<OpenSearchDescription xmlns=\"http://a9.com/-/spec/opensearch/1.1/\">\n"
      "  <ShortName>Books &#38; music of</ShortName>\n"
      "  <LongName>Books &#38; music of Ashdale</LongName>\n"
      "  <Description>All &#60;pages&#62;</Description>\n"
      "  <Url type=\"text/html\" rel=\"results\" template=\"https://x.example/find/search.cgi"
      "?vela_query={searchTerms}&amp;vela_per_page={count?}&amp;vela_page={startPage?}\"/>\n"
      "  <Url type=\"application/rss+xml\" rel=\"results\" "
      "template=\"https://x.example/find/search.cgi?vela_query={searchTerms}&amp;vela_xml=1"
      "&amp;vela_per_page={count?}&amp;vela_page={startPage?}\"/>\n"
      "  <Url type=\"text/html\" rel=\"suggestions\" "
      "template=\"https://x.example/find/search.cgi?vela_query={searchTerms}&amp;vela_ac=1\"/>\n"
      "  <Url type=\"application/opensearchdescription+xml\" rel=\"self\" "
      "template=\"https://x.example/find/vela_opensearch.xml\"/>\n"
      "  <InputEncoding>iso-8859-2</InputEncoding>\n"
      "  <OutputEncoding>iso-8859-2</OutputEncoding>\n"
      "</OpenSearchDescription>\n");
  EXPECT_EQ(OpenSearchDocument(config, false, IndexCharset()).find("suggestions"),
            std::string::npos);
}

TEST(OpenSearch, SettlesWhatTheXmlAnswerSays) {
  SiteConfig config;
  config.searchAddress = "https://x.example/find/search.cgi";
  config.searchName = "A & B";
  config.settings["XMLDesc"] = {true, 0, "mine"};
  AddXmlSettings("https://x.example/", config);
  EXPECT_EQ(config.settings.at("XMLTitle").text, "A &#38; B");
  EXPECT_EQ(config.settings.at("XMLDesc").text, "mine");
  EXPECT_EQ(config.settings.at("XMLURL").text, "https://x.example/find/search.cgi");
  EXPECT_EQ(config.settings.at("XMLXSLTURL").text, "");
  EXPECT_EQ(config.settings.at("XMLOpenSearchDescURL").text,
            "https://x.example/find/vela_opensearch.xml");
  SiteConfig styled;
  styled.styleSheet = "vela_results.xsl";
  AddXmlSettings("/", styled);
  EXPECT_EQ(styled.settings.at("XMLXSLTURL").text, "vela_results.xsl");
  SiteConfig unknown;
  AddXmlSettings("https://x.example/docs/", unknown);
  EXPECT_EQ(unknown.settings.at("XMLTitle").text, "x.example");
  EXPECT_EQ(unknown.settings.at("XMLURL").text, "https://x.example/docs/");
  EXPECT_FALSE(unknown.settings.contains("XMLOpenSearchDescURL"));
  SiteConfig rooted;
  AddXmlSettings("/", rooted);
  EXPECT_EQ(rooted.settings.at("XMLTitle").text, "Search");
  EXPECT_EQ(rooted.settings.at("XMLDesc").text, "Search");
  EXPECT_EQ(unknown.settings.at("XMLDesc").text, "Search x.example");
}

}  // namespace
}  // namespace vela::indexer
