#include "output/xml_document.h"

#include "output/settings_listing.h"

namespace vela {

namespace {

constexpr char kOpenSearchNamespace[] = "http://a9.com/-/spec/opensearch/1.1/";
constexpr char kAtomNamespace[] = "http://www.w3.org/2005/Atom";
constexpr char kVelaNamespace[] = "https://vela-search.example/ns/response/1.0/";

}  // namespace

void WriteXmlOpening(Response& response, const Settings& settings, bool listSettings) {
  WriteOut(response, "<?xml version=\"1.0\" encoding=\"%s\"?>\n", settings.Charset.bytes);
  if (!IsEmpty(settings.XMLXSLTURL)) {
    WriteOut(response, "<?xml-stylesheet type=\"text/xsl\" href=\"%s\"?>\n",
             settings.XMLXSLTURL.bytes);
  }
  WriteOut(response, "<!--Vela Search Engine %s-->\n", settings.Version.bytes);
  WriteOut(response,
           "<rss version=\"2.0\" xmlns:opensearch=\"%s\" xmlns:atom=\"%s\" xmlns:vela=\"%s\">\n",
           kOpenSearchNamespace, kAtomNamespace, kVelaNamespace);
  WriteRaw(response, "<channel>\n");
  WriteOut(response, "<title>%s</title>\n", settings.XMLTitle.bytes);
  WriteOut(response, "<description>%s</description>\n", settings.XMLDesc.bytes);
  WriteOut(response, "<link>%s</link>\n", settings.XMLURL.bytes);
  if (!IsEmpty(settings.XMLOpenSearchDescURL)) {
    WriteOut(response,
             "<opensearch:link rel=\"search\" href=\"%s\" "
             "type=\"application/opensearchdescription+xml\" />\n",
             settings.XMLOpenSearchDescURL.bytes);
  }
  if (listSettings) WriteSettingsListing(response, settings);
}

void WriteXmlClosing(Response& response) { WriteRaw(response, "</channel>\n</rss>"); }

}  // namespace vela
