#include "output/response_start.h"

#include "output/settings_listing.h"

namespace vela {

namespace {

constexpr char kOpenSearchNamespace[] = "http://a9.com/-/spec/opensearch/1.1/";
constexpr char kAtomNamespace[] = "http://www.w3.org/2005/Atom";
constexpr char kVelaNamespace[] = "https://vela-search.example/ns/response/1.0/";

}  // namespace

void WriteHeader(Response& response, const Settings& settings) {
  const char* type = response.xml ? "text/xml" : "text/html";
  if (settings.NoCharset != 0) {
    WriteOut(response, "Content-type: %s;\n\n", type);
  } else {
    WriteOut(response, "Content-type: %s; charset=%s\n\n", type, settings.Charset.bytes);
  }
}

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

void AppendPoweredBy(OutputSections& sections, const Settings& settings) {
  if (settings.VelaInfo != 1) return;
  AppendSection(sections, Section::kPageNumbers, "\n<center><p><small>%s <a href=\"",
                Text(settings.language, Str::kPoweredBy));
  AppendSection(sections, Section::kPageNumbers, "%s", kProductHomePage);
  AppendSection(sections, Section::kPageNumbers,
                "\" target=\"_blank\"><b>Vela Search Engine</b></a></small></p></center>\n");
}

}  // namespace vela
