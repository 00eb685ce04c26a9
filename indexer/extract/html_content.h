// html_content.h: what the elements and texts of a page, told one after the other, say about it.
#pragma once

#include <string>
#include <string_view>

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/page.h"
#include "indexer/extract/page_text.h"
#include "indexer/extract/text_rules.h"

namespace vela::indexer {

class HtmlContent {
 public:
  // Both must outlive this.
  HtmlContent(PageContent& filled, ReadingBudget& takenFrom)
      : page(filled), budget(takenFrom), text(takenFrom) {}

  // The element of `tag` begins where `around` holds: takes what its attributes say. `isHtml`: it
  // is no part of a drawing or formula. Returns what it does to the text inside it.
  ElementRole Begin(const Tag& tag, bool isHtml, const TextState& around);
  // It ends, with `inside` what held in it.
  void End(const ElementRole& role, const TextState& inside);
  // Text, with character references resolved.
  void AddText(std::string_view added, const TextState& state);
  // The content of a title element; `inside` is what holds in it.
  void AddTitle(const std::string& title, const TextState& inside);

  // The content of a script of type application/ld+json, of which only the dates are taken.
  void AddJson(std::string_view json, const TextState& inside);

  bool asksForNoindex() const { return noindex; }
  PageText& pageText() { return text; }
  // To call once, when all was told.
  void Finish();

 private:
  ElementRole RoleOf(const Tag& tag, bool isHtml, const TextState& around) const;
  void ReadAnchor(const Tag& tag, const TextState& around, ElementRole& role);
  void ReadHeadElement(const Tag& tag);
  void ReadMeta(const Tag& tag);
  bool ReadTime(const Tag& tag);
  void TakeTime(std::string time, std::string_view property);
  void AddDate(const char* prefix, std::string_view property, std::string date);

  void CountText(std::string_view added, const TextState& state);
  void BeginLink(const Tag& tag, const TextState& inside);
  void AddToLink(std::string_view added);
  void EndLink();

  PageContent& page;
  ReadingBudget& budget;
  PageText text;
  bool noindex = false;
  uint64_t textBytes = 0;       // that are no blanks, outside of what surrounds the content
  uint64_t linkBytes = 0;       // of those, in links to other pages
  PageLink openLink;            // whose text is being read; its address is empty when there is none
  bool sawMainHeading = false;  // the first h1
  std::string openAnchor;       // of an element that began behind the text so far
  bool openAnchorIsBlock = false;
  bool isInTime = false;  // the text of a time element goes to `timeText`
  std::string timeText;
  std::string timeProperty;  // the itemprop of that element
  std::string innerTime;     // the datetime of a time element inside of that
};

}  // namespace vela::indexer
