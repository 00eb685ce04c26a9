// html_content.h: what the elements and texts of a page, told one after the other, say about it.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/content_choice.h"
#include "indexer/extract/html_tokens.h"
#include "indexer/extract/microdata.h"
#include "indexer/extract/page.h"
#include "indexer/extract/page_text.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/extract/text_rules.h"

namespace vela::indexer {

class HtmlContent {
 public:
  // All must outlive this.
  HtmlContent(PageContent& filled, ReadingBudget& takenFrom, const ContentChoice& wanted)
      : page(filled),
        budget(takenFrom),
        choice(wanted),
        selectors(wanted.selectors, takenFrom),
        text(takenFrom),
        microdata(filled),
        notes(takenFrom.notes == nullptr ? nullptr : &takenFrom.notes->markup) {
    if (notes != nullptr) *notes = {};
  }

  // The attributes that the tags must have beside those of the table; null: none. Not owned.
  const AttributeNames* askedAttributes() const;

  // The element of `tag` begins where `around` holds: takes what its attributes say. `isHtml`: it
  // is no part of a drawing or formula. Returns what it does to the text inside it.
  ElementRole Begin(const Tag& tag, bool isHtml, const TextState& around);
  // It ends, with `inside` what held in it.
  void End(const ElementRole& role, const TextState& inside);
  // Text, with character references resolved.
  void AddText(std::string_view added, const TextState& state);
  // The content of a title element; `inside` is what holds in it.
  void AddTitle(const std::string& title, const TextState& inside);

  // What a comment says, outside of templates: "vela:off" and "vela:on" leave out what is between.
  void TakeComment(std::string_view comment);

  // The content of a script of type application/ld+json.
  void AddJson(std::string_view json, const TextState& inside);

  bool asksForNoindex() const { return noindex; }
  PageText& pageText() { return text; }
  // To call once, when all was told.
  void Finish();

 private:
  ElementRole RoleOf(const Tag& tag, bool isHtml, const TextState& around);
  uint32_t NotePart(PartReason reason, const Tag* tag, uint32_t selector = 0);
  void NoteRole(const Tag& tag, const TextState& around, ElementRole& role);
  void NoteText(std::string_view added, const TextState& state);
  void NoteLink(LinkReason reason, std::string address);
  void ApplyOwnersWishes(const Tag& tag, const TextState& around, ElementRole& role);
  void ReadAnchor(const Tag& tag, const TextState& around, ElementRole& role);
  void ReadHeadElement(const Tag& tag);
  void ReadMeta(const Tag& tag);
  bool ReadTime(const Tag& tag);
  void TakeTime(std::string time, std::string_view property);
  void AddDate(std::string_view property, std::string date);

  void Break(const TextState& state);
  void CountText(std::string_view added, const TextState& state);
  void BeginLink(const Tag& tag, const TextState& inside);
  void AddToLink(std::string_view added);
  void EndLink();
  void AddPicture(const Tag& tag, std::string alternative, const TextState& around);
  TextRegion RegionOfText() const;

  PageContent& page;
  ReadingBudget& budget;
  const ContentChoice& choice;
  SelectorMatching selectors;
  PageText text;
  Microdata microdata;
  MarkupNotes* notes;    // not owned; null: nobody asks
  uint32_t offPart = 0;  // see TextState::part
  bool noindex = false;
  bool isOff = false;  // behind "vela:off"
  // In bytes that are no blanks, outside of what surrounds the content.
  struct TextCount {
    uint64_t all = 0;
    uint64_t running = 0;  // of those, outside of navigation
    uint64_t inLinks = 0;  // of those, in links to other pages
  };
  std::array<TextCount, kTextRegionCount> counts;  // of each region alone
  std::vector<TextRegion> linkRegions;             // beside page.links
  std::vector<TextRegion> pictureRegions;          // beside page.pictures
  TextRegion openLinkRegion = TextRegion::kPage;
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
