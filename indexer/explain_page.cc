#include "indexer/explain_page.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <filesystem>
#include <iterator>
#include <map>
#include <optional>
#include <system_error>
#include <utility>

#include "indexer/asked_page.h"
#include "indexer/collect/category_set.h"
#include "indexer/collect/page_collection.h"
#include "indexer/collect/site_habits.h"
#include "indexer/extract/declared_facts.h"
#include "indexer/extract/page_date.h"
#include "indexer/extract/read_page.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/joining_order.h"
#include "indexer/link_check.h"
#include "indexer/open_source.h"
#include "indexer/passing_folder.h"
#include "indexer/report/index_error.h"
#include "indexer/run_conditions.h"
#include "indexer/site/address.h"
#include "indexer/site_look.h"
#include "indexer/words/clean_text.h"
#include "indexer/words/lower_copy.h"
#include "text/shown_numbers.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// The pages before one are read with it where they are no more than these.
constexpr size_t kComparedPages = 1000;
constexpr size_t kQuotedBytes = 80;

std::string Quoted(const std::string& text) { return "\"" + text + "\""; }

// The text on one line, cut where it is long.
std::string Excerpt(std::string text) {
  CleanText(text);
  text = CollapseBlanks(text);
  if (text.size() <= kQuotedBytes) return text;
  size_t end = kQuotedBytes;
  while (end > 0 && (static_cast<unsigned char>(text[end]) >> 6) == 2) --end;
  return text.substr(0, end) + "...";
}

std::string Counted(uint64_t count, const char* one, const char* several) {
  return CountText(count) + " " + (count == 1 ? one : several);
}

std::string Words(uint64_t count) { return Counted(count, "word", "words"); }

std::string DateText(int64_t seconds) {
  const std::time_t time = seconds;
  struct tm parts = {};
  char text[40] = "";
  if (gmtime_r(&time, &parts) != nullptr) strftime(text, sizeof text, "%F %H:%M UTC", &parts);
  return text;
}

std::string Because(const Finding& why) {
  std::string text = FindingText({why.reason, {}, why.subject});
  return why.where.empty() ? text : text + " (" + why.where + ")";
}

std::string_view CharsetOriginText(CharsetOrigin origin) {
  constexpr std::string_view kTexts[] = {
      "",
      "its byte-order mark says so",
      "the bytes are text as such",
      "the server says so",
      "the page says so",
      "the page switches to it",
      "nothing else is said, and the bytes are valid as such",
      "a guess from its bytes, as nothing is said that fits them",
      "the last resort, as nothing else fits its bytes",
  };
  return kTexts[static_cast<size_t>(origin)];
}

std::string_view PartReasonText(PartReason reason) {
  constexpr std::string_view kTexts[] = {
      "navigation",
      "surrounds the content of the page",
      "tools of the page",
      "leads past what surrounds the content",
      "hidden",
      "no text for readers",
      "template",
      "exclude_elements",
      "data-vela-ignore",
      "between vela:off and vela:on",
      "outside of the part that is the content",
  };
  return kTexts[static_cast<size_t>(reason)];
}

std::string_view LinkReasonText(LinkReason reason) {
  constexpr std::string_view kTexts[] = {"in what surrounds the content", "nofollow", "no text",
                                         "its text is too long for a name"};
  return kTexts[static_cast<size_t>(reason)];
}

// With the meta element that it is from.
std::string DescriptionText(const PageContent& content) {
  if (content.description.empty()) return "none";
  const auto from = std::ranges::find(content.metas, content.description, &MetaElement::second);
  const std::string text = Quoted(content.description);
  return from == content.metas.end() ? text : text + ": " + from->first;
}

// One page, and what a run would make of it.
class Explainer {
 public:
  Explainer(const Options& options, Progress& progress, const volatile std::sig_atomic_t& stop)
      : options_(options), progress_(progress), stop_(stop), charset_(options.config.charset) {}

  Explanation Explain() {
    const std::string givenBase = CheckedBaseUrl(options_.baseUrl);
    progress_.Begin("Looking for pages", 0);
    opened_ = OpenKeptSource(options_, givenBase, IndexPath(), progress_, stop_);
    listing_ = opened_.source->List();
    CheckStop(stop_);
    const AskedPage asked =
        FindAskedPage(options_.explainPage, options_, opened_.base, *opened_.source, listing_);
    said_.page = asked.path.empty() ? options_.explainPage : asked.path;
    if (asked.item.has_value()) {
      ExplainItem(*asked.item);
    } else {
      said_.outcome = "no page of the index: " + Because(asked.why);
    }
    progress_.Clear();
    return std::move(said_);
  }

 private:
  fs::path IndexPath() const {
    if (options_.out.empty()) return {};
    std::error_code error;  // it need not be there
    const fs::path index = fs::weakly_canonical(fs::absolute(options_.out), error);
    return index.has_filename() ? index : index.parent_path();
  }

  void Say(std::string label, std::string text, std::vector<std::string> details = {}) {
    said_.lines.push_back({std::move(label), std::move(text), std::move(details)});
  }

  // "LABEL  3 WHAT"; nothing where there are none.
  void SayList(std::string label, const char* what, std::vector<std::string> details) {
    if (details.empty()) return;
    std::string text = CountText(details.size()) + what;
    Say(std::move(label), std::move(text), std::move(details));
  }

  void LeaveOut(Reason reason, const std::string& other = {}) {
    said_.outcome = "left out: " + std::string(ReasonText(reason));
    if (!other.empty()) said_.outcome += ", " + other;
  }

  void ExplainItem(const SourceItem& item) {
    const SiteLook look =
        LookAtSite(*opened_.source, listing_.items, opened_.base, stop_, options_.config);
    IndexSummary summary;
    Settle(look, charset_, options_.config, summary);
    const ContentChoices content(options_.config, opened_.base);
    DocumentReaders documents;
    wishes_ = {.images = options_.config.images,
               .recognisesLanguages = options_.config.recognisesLanguages,
               .dates = options_.config.dates,
               .documents = &documents,
               .content = &content};
    maker_.emplace(BlockInput{
        .base = opened_.base, .config = options_.config, .charset = charset_, .stop = &stop_});
    FileContent file;
    const Reason unread = opened_.source->Read(item, file);
    SayFile(item, file);
    if (unread != Reason::kNone) {
      LeaveOut(unread);
      return;
    }
    const FileContent whole = file;
    ReadingNotes notes;
    Page page;
    Reason reason =
        ReadPage(item, std::move(file), wishes_, {.stop = &stop_, .notes = &notes}, page);
    CheckStop(stop_);
    if (!notes.charset.empty()) {
      Say("Characters", notes.charset + ": " + std::string(CharsetOriginText(notes.charsetOrigin)));
    }
    const bool isRead = reason == Reason::kNone;
    if (isRead) {
      SayTexts(page);
      SayRobots();
      reason = SayPlace(item, page);
      SayFields(page);
    } else {
      LeaveOut(reason);
    }
    SayContent(page, notes.markup, isRead);
    if (isRead) SayWords(page, notes.markup);
    if (isRead && item.type == FileType::kHtml) SayLinks(item, whole, page, notes.markup);
    said_.isTaken = reason == Reason::kNone;
  }

  void SayFile(const SourceItem& item, const FileContent& file) {
    std::string from = "from the web, as the last run has fetched it";
    if (!options_.warc.empty()) from = "from an archive (--warc)";
    if (!options_.site.empty()) {
      from = (fs::path(options_.site) / (item.file.empty() ? item.path : item.file)).string();
    }
    if (file.size != 0) from += ", " + BytesText(file.size);
    if (file.modifiedTime != 0) from += ", changed " + DateText(file.modifiedTime);
    Say("Source", from);
    if (item.path != item.address) Say("Address", item.address);
    std::string type(kFileTypeEndings[static_cast<size_t>(item.type)].key);
    type += item.mediaType.empty() ? ", by the ending of its name"
                                   : ", as its server says (" + item.mediaType + ")";
    if (item.isXml) type += "; sent as XML";
    if (item.type >= FileType::kPdf) type += "; read by a program of its own, locked in";
    Say("Read as", type);
  }

  void SayTexts(const Page& page) {
    const PageContent& content = page.content;
    const Page seen = AsSeen(options_.config.habits, page);
    std::string origin = "its own title";
    if (content.title.empty()) {
      origin = HeadingTitle(content).empty() ? "the name of its file" : "its first heading";
      if (!SaysAnything(content)) origin += ", unless a page has an alternative text for it";
    }
    if (seen.facts.title != page.facts.title) {
      origin += ", where it is " + Quoted(page.facts.title) + " (site_name)";
    }
    Say("Title", Quoted(seen.facts.title) + ": " + origin);
    Say("Description", DescriptionText(content));
    std::string language = page.facts.language + ": the page says so";
    PageContent silent;
    silent.metas = content.metas;
    if (page.facts.language.empty()) {
      language = wishes_.recognisesLanguages
                     ? "not known: the page names none, and its text is too short or mixed"
                     : "the page names none (recognise_languages is off)";
    } else if (content.language.empty() && FactOf(silent, PageFact::kLanguage).empty()) {
      language = page.facts.language + ": recognised from its text";
    }
    Say("Language", language);
    SayDate(page);
    if (!page.facts.image.empty()) Say("Picture", page.facts.image);
    if (!content.markupFault.empty()) {
      Say("Remark", FindingText({Reason::kNotWellFormed, {}, {}}) + ": " + content.markupFault);
    }
  }

  void SayDate(const Page& page) {
    constexpr std::pair<DateSource, const char*> kSources[] = {
        {DateSource::kMeta, "what the page declares (meta)"},
        {DateSource::kTime, "its first time element (time)"},
        {DateSource::kFile, "its file (file)"},
    };
    std::string tried;
    for (const DateSource source : wishes_.dates) {
      const char* text =
          std::ranges::find(kSources, source, [](const auto& each) { return each.first; })->second;
      const int64_t time = PageDate(page.content, page.facts.fileTime, {source});
      if (time == 0) {
        tried += tried.empty() ? "" : ", ";
        tried += text;
        continue;
      }
      std::string said = DateText(time) + ": from " + text;
      if (source == DateSource::kFile && !options_.config.trustsFileDates) {
        said += ", unless most files were changed on one day";
      }
      Say("Date", said);
      return;
    }
    Say("Date", tried.empty() ? "none is looked for (dates)" : "none in " + tried);
  }

  void SayRobots() {
    Say("Robots", options_.site.empty() ? "neither the page nor its server forbids to find it"
                                        : "the page does not forbid to find it");
  }

  // Joins the page, behind those that come before it, as a run would. Whether it stays.
  Reason SayPlace(const SourceItem& item, const Page& page) {
    Say("Canonical", page.facts.canonical.empty() ? "the page names none" : page.facts.canonical);
    const PassingFolder folder = PassingFolder::Make();
    PageCollection collection({.base = opened_.base,
                               .config = options_.config,
                               .charset = charset_,
                               .memory = size_t{64} << 20,
                               .sink = [](const TextStretch&) {}},
                              folder.path());
    for (const SourceItem& each : listing_.items) collection.addresses.AddItem(each.address);
    AddPictures(listing_.items, collection);
    std::vector<std::string> joined;
    const bool compares = listing_.items.size() <= kComparedPages;
    if (compares) JoinPagesBefore(item, collection, joined);
    if (item.type == FileType::kPicture) SayPictureTexts(item, compares, collection);
    Reason reason = maker_->Make(page, block_);
    CheckStop(stop_);
    PageEntry entry;
    if (reason == Reason::kNone) reason = AddPage(block_, collection, entry);
    const auto nameOf = [&](uint32_t number) {
      return number < joined.size() ? joined[number] : std::string();
    };
    std::string other = collection.addresses.OriginalOf(item.address);
    if (const auto equal = collection.addresses.PageAt(item.address); other.empty() && equal) {
      other = nameOf(*equal);
    }
    if (reason != Reason::kNone) {
      LeaveOut(reason, other);
    } else {
      said_.outcome = "in the index as " + PlainAddress(entry.address);
      if (entry.similarTo.has_value()) {
        Say("Remark", FindingText({Reason::kSimilar, {}, {}}) + ": " + nameOf(*entry.similarTo));
      }
    }
    Say("Copies", compares ? (reason == Reason::kNone ? "no page before it says the same"
                                                      : "compared with the pages before it")
                           : "not looked for, as the site has more than " +
                                 CountText(kComparedPages) + " pages: see --report");
    if (reason == Reason::kNone) SayRules(entry);
    return reason;
  }

  void JoinPagesBefore(const SourceItem& item, PageCollection& collection,
                       std::vector<std::string>& joined) {
    progress_.Begin("Comparing with the pages before", listing_.items.size());
    const JoiningOrder order(listing_.items, IndexesPictures(options_.config));
    for (size_t i = 0; i < listing_.items.size(); ++i) {
      const SourceItem before = listing_.items[order[i]];
      if (before.path == item.path) break;
      CheckStop(stop_);
      FileContent file;
      Page page;
      PageEntry entry;
      progress_.Step(i + 1);
      if (opened_.source->Read(before, file) != Reason::kNone ||
          ReadPage(before, std::move(file), wishes_, {.stop = &stop_}, page) != Reason::kNone ||
          maker_->Make(page, block_) != Reason::kNone ||
          AddPage(block_, collection, entry) != Reason::kNone) {
        continue;
      }
      joined.push_back(PlainAddress(entry.address));
    }
  }

  // What the pages, which have joined `collection`, say of a picture.
  void SayPictureTexts(const SourceItem& item, bool areKnown, const PageCollection& collection) {
    std::string what =
        "not looked for, as the site has more than " + CountText(kComparedPages) + " pages";
    std::vector<std::string> details;
    if (areKnown) {
      for (const std::string& text : collection.pictures->texts.Of(item.address)) {
        details.push_back(Quoted(Excerpt(text)));
      }
      what = details.empty() ? "no page has one for it"
                             : Counted(details.size(), "text", "texts") +
                                   " of pages that show it, by which it is found";
    }
    Say("Alternatives", what, std::move(details));
  }

  void SayRules(const PageEntry& entry) {
    const std::vector<CategoryRule>& categories = options_.config.categories;
    std::string names;
    for (size_t i = 0; i < categories.size(); ++i) {
      if (HasCategory(entry.categories, i))
        names += (names.empty() ? "" : ", ") + categories[i].name;
    }
    if (!categories.empty()) Say("Categories", names.empty() ? "none fits" : names);
    if (entry.boost != 0) {
      char factor[16] = "";
      snprintf(factor, sizeof factor, "%d.%d", entry.boost / 10, entry.boost % 10);
      Say("Boost", std::string("its score is multiplied by ") + factor);
    }
  }

  void SayFields(const Page& page) {
    std::vector<std::string> details;
    for (const FieldRule& field : options_.config.fields) {
      const std::string_view value = MetaContent(page.content, LowerUtf8Copy(field.meta));
      std::string text = field.name + ": ";
      text += value.empty() ? "nothing, as the page has no " + field.meta
                            : Quoted(Excerpt(std::string(value))) + " (" + field.meta + ")";
      for (const Finding& fault : block_.metaFaults) {
        if (fault.where != field.name) continue;
        text += "; left out: " + Quoted(Excerpt(fault.subject)) + ", " +
                std::string(ReasonText(fault.reason));
      }
      details.push_back(std::move(text));
    }
    SayList("Fields", " in the configuration", std::move(details));
    std::vector<std::string> declared;
    for (const auto& [name, value] : page.content.metas) {
      declared.push_back(name + " = " + Quoted(Excerpt(value)));
    }
    SayList("Declared", " for fields to take, no text of the page", std::move(declared));
  }

  // Words as the index counts them.
  uint32_t CountWords(std::string text) {
    CleanText(text);
    Page page;
    page.facts.address = opened_.base;
    page.content.body.push_back({.text = std::move(text)});
    PageBlock block;
    if (maker_->Make(page, block) != Reason::kNone) CheckStop(stop_);
    return block.words.bodyWords;
  }

  void SayContent(const Page& page, const MarkupNotes& notes, bool isRead) {
    const SiteConfig& config = options_.config;
    const ContentUse& use = page.content.use;
    if (isRead && use.rule != 0) {
      Say("Rule", "[[content]] of " + config.contentRules[use.rule - 1].where);
    }
    if (isRead && use.isChosen)
      Say("Content", "chosen elements alone (only_elements, data-vela-body)");
    if (isRead && use.lacksChosen) Say("Remark", FindingText({Reason::kNothingChosen, {}, {}}));
    if (isRead && use.isLeftOff) Say("Remark", FindingText({Reason::kLeftOff, {}, {}}));
    std::vector<std::string> details;
    uint64_t sum = 0;
    std::map<std::string, uint64_t> unread;
    for (const LeftOutPart& part : notes.parts) {
      if (part.reason == PartReason::kFrame && notes.countsFrame) continue;
      const uint32_t words = CountWords(part.text);
      sum += words;
      if (words == 0 && part.reason == PartReason::kUnread) ++unread[part.element];
      const bool isOwners = part.reason == PartReason::kSelector ||
                            part.reason == PartReason::kIgnored ||
                            part.reason == PartReason::kRemark;
      if (words == 0 && !isOwners) continue;
      std::string why(PartReasonText(part.reason));
      if (part.reason == PartReason::kSelector && part.selector < config.selectors.size()) {
        const NamedSelector& selector = config.selectors[part.selector];
        why += " " + Quoted(selector.text);
        if (!selector.where.empty()) why += ", " + selector.where;
      }
      std::string text = Words(words) + ": ";
      if (!part.element.empty()) text += Excerpt(part.element) + ", ";
      text += why;
      if (words != 0) text += ": " + Quoted(Excerpt(part.text));
      details.push_back(std::move(text));
    }
    for (const auto& [element, count] : unread) {
      details.push_back(Counted(count, "element ", "elements ") + Excerpt(element) + ", " +
                        std::string(PartReasonText(PartReason::kUnread)));
    }
    if (notes.countsFrame) {
      Say("Remark", "the page has no text but what surrounds its content: that is taken");
    }
    if (isRead) SayRepeated(page, details, sum);
    if (!details.empty()) Say("Not its text", Words(sum), std::move(details));
  }

  // What most pages of the site have (repeated_text).
  void SayRepeated(const Page& page, std::vector<std::string>& details, uint64_t& sum) {
    const Page seen = AsSeen(options_.config.habits, page);
    size_t at = 0;
    for (const TextRun& run : page.content.body) {
      if (at < seen.content.body.size() && seen.content.body[at].text == run.text) {
        ++at;
        continue;
      }
      const bool isCut = at < seen.content.body.size() &&
                         run.text.find(seen.content.body[at].text) != run.text.npos;
      const uint32_t words =
          CountWords(run.text) - (isCut ? CountWords(seen.content.body[at].text) : 0);
      if (isCut) ++at;
      if (words == 0) continue;
      sum += words;
      details.push_back(Words(words) +
                        ": the same on most pages (repeated_text): " + Quoted(Excerpt(run.text)));
    }
  }

  void SayWords(const Page& page, const MarkupNotes& notes) {
    const Page seen = AsSeen(options_.config.habits, page);
    std::map<uint8_t, std::string> byLevel;
    for (const TextRun& run : seen.content.body) {
      if (WeightLevel(run) != 0) byLevel[WeightLevel(run)].append(run.text).append(" ");
    }
    std::vector<std::string> details;
    details.reserve(byLevel.size());
    for (const auto& [level, text] : byLevel) {
      details.push_back(Words(CountWords(text)) + " of the text weigh as a heading of level " +
                        std::to_string(level));
    }
    if (const uint32_t words = CountWords(notes.pictureTexts); words != 0) {
      details.push_back(Words(words) + " of the text: alternative texts of pictures");
    }
    details.push_back(Words(CountWords(seen.facts.title)) + " in the title");
    details.push_back(Words(CountWords(seen.content.description)) + " in the description");
    uint32_t inAddress = 0;
    for (const WordOfPage& word : block_.addresses.front().words.words) inAddress += word.total;
    details.push_back(Words(inAddress) + " in the address");
    Say("Text", Words(block_.words.bodyWords), std::move(details));

    std::vector<std::string> words;
    size_t at = 0;
    std::string line;
    constexpr size_t kLineBytes = 70;
    for (const WordOfPage& word : block_.words.words) {
      line += block_.words.wordTexts.substr(at, word.bytes);
      at += word.bytes;
      if (word.total > 1) line += " (" + std::to_string(word.total) + ")";
      line += " ";
      if (line.size() < kLineBytes) continue;
      words.push_back(RepairedUtf8(std::exchange(line, {})));
    }
    if (!line.empty()) words.push_back(RepairedUtf8(line));
    Say("Words", CountText(block_.words.words.size()) + " different, with how often they occur",
        std::move(words));
    SayUntaken(seen);
    std::vector<std::string> sections;
    for (const PageSection& section : block_.sections) {
      sections.push_back("#" + section.anchor + " " + section.heading);
    }
    SayList("Sections", " that results lead to", std::move(sections));
    std::vector<std::string> pieces;
    for (const PageBlock& piece : block_.pieces) {
      pieces.push_back("#" + piece.anchor + " " + RepairedUtf8(piece.facts.title) + ": " +
                       Words(piece.words.bodyWords));
    }
    SayList("Own results", " sections, beside what comes before them (section_pages)",
            std::move(pieces));
  }

  // What stands where words do and is none for the index.
  void SayUntaken(const Page& page) {
    std::vector<std::string> details;
    WordForms forms(charset_, options_.config.stemming);
    ChunkTokens tokens;
    const auto look = [&](std::string_view text) {
      for (std::string_view chunk = NextChunk(text); !chunk.empty(); chunk = NextChunk(text)) {
        CutChunk(chunk, tokens);
        size_t written = 0;
        for (const TextToken& token : tokens.tokens) {
          written += token.surface.size();
          if (token.sign == 0 && forms.Base(token.base).empty()) {
            details.push_back(Quoted(std::string(token.surface)) + ": " + charset_.name() +
                              " cannot write it");
          }
        }
        if (written + kWordBytesLimit < chunk.size()) {
          details.push_back(Quoted(Excerpt(std::string(chunk))) + ": longer than " +
                            std::to_string(kWordBytesLimit) + " bytes" +
                            (tokens.tokens.empty() ? "" : "; its parts are taken"));
        }
      }
    };
    for (const TextRun& run : page.content.body) look(run.text);
    look(page.facts.title);
    look(page.content.description);
    if (page.facts.title.size() > kPageTitleLimit) {
      details.push_back("of the title " + std::to_string(kPageTitleLimit) +
                        " bytes are shown; all of it is found");
    }
    if (page.content.description.size() > kPageDescriptionLimit) {
      details.push_back("of the description " + std::to_string(kPageDescriptionLimit) +
                        " bytes are shown; all of it is found");
    }
    SayList("Not taken", "", std::move(details));
  }

  void SayLinks(const SourceItem& item, const FileContent& file, const Page& page,
                const MarkupNotes& notes) {
    const std::optional<PageAnchors> anchors = AnchorsOfItem(item, file);
    if (!anchors.has_value()) return;
    uint64_t within = 0;
    uint64_t elsewhere = 0;
    for (const AnchorLink& link : anchors->links) {
      if (link.address.empty()) continue;
      ++(IsBelow(AsEncoded(link.address), opened_.base) ? within : elsewhere);
    }
    std::vector<std::string> details;
    details.push_back(Counted(page.content.links.size(), "text", "texts") +
                      " of links count for the pages that they lead to, within the site");
    for (const RefusedLink& link : notes.links) {
      if (link.address.empty() || link.address.starts_with('#')) continue;
      details.push_back(Excerpt(link.address) + ": does not count, " +
                        std::string(LinkReasonText(link.reason)));
    }
    Say("Links",
        CountText(within) + " to pages of the site, " + CountText(elsewhere) + " elsewhere",
        std::move(details));
  }

  Options options_;  // as the look at the site settles them
  Progress& progress_;
  const volatile std::sig_atomic_t& stop_;
  IndexCharset charset_;
  OpenedSource opened_;
  SiteListing listing_;
  PageWishes wishes_;
  std::optional<BlockMaker> maker_;
  PageBlock block_;  // of the page, once it is read
  Explanation said_;
};

}  // namespace

Explanation ExplainPage(const Options& options, Progress& progress,
                        const volatile std::sig_atomic_t& stop) {
  return Explainer(options, progress, stop).Explain();
}

}  // namespace vela::indexer
