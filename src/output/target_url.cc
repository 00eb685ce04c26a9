#include "output/target_url.h"

#include "output/markup.h"
#include "text/edit.h"
#include "text/percent_code.h"

namespace vela {

namespace {

const char* HighlightParameter(const Settings& settings) {
  return SearchesSubstrings(settings) ? "vela_highlightsub=" : "vela_highlight=";
}

bool IsPdfLink(const Settings& settings, std::string_view url) {
  return settings.PdfHighlight == 1 && FindNoCase(url, ".pdf", IsUtf8(settings)) != url.npos;
}

// The form in which viewers of PDF files take words to look for. Only what could end the attribute
// is encoded.
LinkText PdfTarget(std::string_view url, std::string_view query) {
  LinkText target;
  Set(target, url);
  Append(target, "#search=%22");
  for (char c : query) {
    if (c == '"') continue;
    if (c != '\\' && IsUnsafeInAddress(c)) {
      Append(target, PercentCode(c).view());
    } else {
      Append(target, {&c, 1});
    }
  }
  Append(target, "%22");
  return target;
}

}  // namespace

LinkText ResultTarget(const Settings& settings, std::string_view url, std::string_view encodedQuery,
                      std::string_view query) {
  if (IsPdfLink(settings, url)) return PdfTarget(url, query);
  LinkText target;
  if (PointsToWords(settings)) {
    BuildUrl(target, url, HighlightParameter(settings), encodedQuery);
  } else {
    Set(target, url);
  }
  return target;
}

LinkText RecommendedTarget(const Settings& settings, std::string_view url,
                           std::string_view encodedQuery, std::string_view query) {
  const bool highlights = PointsToWords(settings);
  const std::string_view plain = highlights ? url.substr(0, url.find('#')) : url;
  if (IsPdfLink(settings, plain)) return PdfTarget(plain, query);
  LinkText target;
  if (highlights) {
    BuildUrlKeepFragment(target, url, HighlightParameter(settings), encodedQuery);
  } else {
    Set(target, url);
  }
  return target;
}

LinkAttribute ConfiguredLinkAttribute(const Settings& settings) {
  LinkAttribute attribute;
  if (settings.UseLinkTarget == 1) {
    Appendf(attribute, "target=\"%s\"", settings.LinkTarget.bytes);
  }
  return attribute;
}

}  // namespace vela
