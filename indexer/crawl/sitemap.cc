#include "indexer/crawl/sitemap.h"

#include <expat.h>

#include <algorithm>
#include <limits>
#include <memory>
#include <new>

#include "indexer/source/gunzip.h"
#include "text/edit.h"

namespace vela::indexer {

namespace {

constexpr size_t kAddressLimit = 4096;  // bytes; a longer one is never asked for
constexpr size_t kNestingLimit = 20;
constexpr char kNamespaceEnd = '\n';  // stands in no name

using Names = std::vector<std::string>;

struct XmlSitemap {
  XML_Parser parser = nullptr;
  Sitemap* sitemap = nullptr;
  Names open;  // local names
  std::string address;
};

// The name without its namespace: sitemaps in the wild have old ones, wrong ones and none.
std::string_view LocalName(std::string_view name) {
  return name.substr(name.rfind(kNamespaceEnd) + 1);
}

bool IsAddressOpen(const XmlSitemap& read) {
  return read.open.size() == 3 && read.open[2] == "loc";
}

void XMLCALL OnStart(void* user, const XML_Char* name, const XML_Char** attributes) {
  (void)attributes;
  auto& read = *static_cast<XmlSitemap*>(user);
  if (read.open.size() == kNestingLimit) {
    XML_StopParser(read.parser, XML_FALSE);
    return;
  }
  read.open.emplace_back(LocalName(name));
  if (IsAddressOpen(read)) read.address.clear();
}

void XMLCALL OnText(void* user, const XML_Char* text, int length) {
  auto& read = *static_cast<XmlSitemap*>(user);
  if (!IsAddressOpen(read) || read.address.size() > kAddressLimit) return;
  read.address.append(text, static_cast<size_t>(length));
}

void AddAddress(std::string_view address, Names& addresses) {
  address = TrimAll(address);
  if (address.empty() || address.size() > kAddressLimit) return;
  if (addresses.size() < kSitemapAddressLimit) addresses.emplace_back(address);
}

void XMLCALL OnEnd(void* user, const XML_Char* name) {
  (void)name;
  auto& read = *static_cast<XmlSitemap*>(user);
  if (IsAddressOpen(read)) {
    if (read.open[0] == "urlset" && read.open[1] == "url") {
      AddAddress(read.address, read.sitemap->pages);
    } else if (read.open[0] == "sitemapindex" && read.open[1] == "sitemap") {
      AddAddress(read.address, read.sitemap->sitemaps);
    }
  }
  read.open.pop_back();
}

// A sitemap has no document type; one that brings its own entities is not read.
void XMLCALL OnDoctype(void* user, const XML_Char* name, const XML_Char* systemId,
                       const XML_Char* publicId, int hasInternalSubset) {
  (void)name;
  (void)systemId;
  (void)publicId;
  (void)hasInternalSubset;
  XML_StopParser(static_cast<XmlSitemap*>(user)->parser, XML_FALSE);
}

bool ReadXml(std::string_view xml, Sitemap& sitemap) {
  const std::unique_ptr<std::remove_pointer_t<XML_Parser>, decltype(&XML_ParserFree)> parser(
      XML_ParserCreateNS(nullptr, kNamespaceEnd), &XML_ParserFree);
  if (parser == nullptr) throw std::bad_alloc();
  XmlSitemap read = {.parser = parser.get(), .sitemap = &sitemap, .open = {}, .address = {}};
  XML_SetUserData(parser.get(), &read);
  XML_SetElementHandler(parser.get(), &OnStart, &OnEnd);
  XML_SetCharacterDataHandler(parser.get(), &OnText);
  XML_SetStartDoctypeDeclHandler(parser.get(), &OnDoctype);
  static_assert(kSitemapBytesLimit <= std::numeric_limits<int>::max());
  const XML_Status status =
      XML_Parse(parser.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE);
  if (status != XML_STATUS_OK && XML_GetErrorCode(parser.get()) == XML_ERROR_NO_MEMORY) {
    throw std::bad_alloc();
  }
  return status == XML_STATUS_OK;
}

void ReadLines(std::string_view text, Sitemap& sitemap) {
  while (!text.empty()) {
    const size_t end = std::min(text.find_first_of("\r\n"), text.size());
    AddAddress(text.substr(0, end), sitemap.pages);
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

}  // namespace

bool ReadSitemap(std::string_view bytes, Sitemap& sitemap) {
  constexpr std::string_view kUtf8Mark = "\xEF\xBB\xBF";
  sitemap = Sitemap();
  std::string unpacked;
  bool isWhole = bytes.size() <= kSitemapBytesLimit;
  if (LooksGzipped(bytes)) {
    isWhole = Gunzip(bytes, kSitemapBytesLimit, unpacked) == GunzipStatus::kOk;
    bytes = unpacked;
  }
  bytes = bytes.substr(0, kSitemapBytesLimit);
  if (bytes.starts_with(kUtf8Mark)) bytes.remove_prefix(kUtf8Mark.size());
  const size_t first = bytes.find_first_not_of(" \t\r\n");
  if (first == bytes.npos) return false;
  if (bytes[first] == '<') return ReadXml(bytes.substr(first), sitemap) && isWhole;
  ReadLines(bytes, sitemap);
  return isWhole;
}

}  // namespace vela::indexer
