#include "indexer/publish/open_search.h"

#include <string_view>

#include "indexer/site/address.h"
#include "indexer/words/stored_text.h"
#include "text/lower.h"

namespace vela::indexer {

namespace {

// The most that the format allows, in characters.
constexpr size_t kShortNameLimit = 16;
constexpr size_t kLongNameLimit = 48;
constexpr size_t kDescriptionLimit = 1024;

std::string FirstCharacters(std::string_view text, size_t most) {
  size_t at = 0;
  for (size_t count = 0; count < most && at < text.size(); ++count) {
    at += Utf8Length(static_cast<unsigned char>(text[at]));
  }
  return std::string(text.substr(0, at));
}

std::string Element(std::string_view name, std::string_view text) {
  std::string element = "  <";
  element.append(name).append(">").append(StoredText(text, IndexCharset()));
  return element.append("</").append(name).append(">\n");
}

struct AnswerLink {
  std::string_view type;
  std::string_view relation;
  std::string_view parameters;  // behind the query
};

std::string UrlElement(const std::string& address, const AnswerLink& link) {
  std::string element = "  <Url type=\"";
  element.append(link.type).append("\" rel=\"").append(link.relation).append("\" template=\"");
  element.append(StoredAddress(address)).append("?vela_query={searchTerms}");
  return element.append(link.parameters).append("\"/>\n");
}

// "www.example.org"; empty for an address without a host.
std::string HostOf(std::string_view address) {
  const size_t scheme = address.find("://");
  if (scheme == address.npos) return {};
  const std::string_view rest = address.substr(scheme + 3);
  return std::string(rest.substr(0, rest.find('/')));
}

void SetText(std::string_view key, std::string_view value, SiteConfig& config) {
  config.settings.try_emplace(std::string(key), SettingValue{true, 0, std::string(value)});
}

}  // namespace

std::string OpenSearchAddress(const std::string& searchAddress) {
  return ResolveAddress(searchAddress, kOpenSearchName);
}

std::string OpenSearchDocument(const SiteConfig& config, bool suggestions,
                               const IndexCharset& charset) {
  constexpr std::string_view kPages = "&amp;vela_per_page={count?}&amp;vela_page={startPage?}";
  const std::string& address = config.searchAddress;
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
  text += "<OpenSearchDescription xmlns=\"http://a9.com/-/spec/opensearch/1.1/\">\n";
  text += Element("ShortName", FirstCharacters(config.searchName, kShortNameLimit));
  text += Element("LongName", FirstCharacters(config.searchName, kLongNameLimit));
  text += Element("Description", FirstCharacters(config.searchDescription, kDescriptionLimit));
  text += UrlElement(address, {"text/html", "results", kPages});
  text += UrlElement(address,
                     {"application/rss+xml", "results", "&amp;vela_xml=1" + std::string(kPages)});
  if (suggestions) text += UrlElement(address, {"text/html", "suggestions", "&amp;vela_ac=1"});
  text += "  <Url type=\"application/opensearchdescription+xml\" rel=\"self\" template=\"";
  text += StoredAddress(OpenSearchAddress(address)) + "\"/>\n";
  text += Element("InputEncoding", charset.name());
  text += Element("OutputEncoding", charset.name());
  return text + "</OpenSearchDescription>\n";
}

void AddXmlSettings(const std::string& siteAddress, SiteConfig& config) {
  const std::string& address = config.searchAddress.empty() ? siteAddress : config.searchAddress;
  if (config.searchName.empty()) config.searchName = HostOf(address);
  if (config.searchDescription.empty()) {
    config.searchDescription = "Search";
    if (!config.searchName.empty()) config.searchDescription += " " + config.searchName;
  }
  if (config.searchName.empty()) config.searchName = "Search";
  constexpr size_t kXmlTitleLimit = 1000;
  constexpr size_t kXmlDescriptionLimit = 1900;
  const IndexCharset utf8;  // texts of settings are brought into the character set at the end
  SetText("XMLTitle", StoredText(config.searchName, kXmlTitleLimit, utf8), config);
  SetText("XMLDesc", StoredText(config.searchDescription, kXmlDescriptionLimit, utf8), config);
  SetText("XMLURL", StoredAddress(address), config);
  SetText("XMLXSLTURL", StoredAddress(config.styleSheet), config);
  if (!config.searchAddress.empty()) {
    SetText("XMLOpenSearchDescURL", StoredAddress(OpenSearchAddress(address)), config);
  }
}

}  // namespace vela::indexer
