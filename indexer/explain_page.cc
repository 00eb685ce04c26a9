#include "indexer/explain_page.h"

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "indexer/asked_page.h"
#include "indexer/collect/page_collection.h"
#include "indexer/explanation/explain_content.h"
#include "indexer/explanation/explain_facts.h"
#include "indexer/explanation/explain_links.h"
#include "indexer/explanation/explain_place.h"
#include "indexer/explanation/explain_words.h"
#include "indexer/explanation/wording.h"
#include "indexer/extract/read_page.h"
#include "indexer/extract/reading_notes.h"
#include "indexer/joining_order.h"
#include "indexer/link_check.h"
#include "indexer/open_source.h"
#include "indexer/passing_folder.h"
#include "indexer/run_conditions.h"
#include "indexer/site/address.h"
#include "indexer/site_look.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

std::string Because(const Finding& why) {
  std::string text = FindingText({why.reason, {}, why.subject});
  return why.where.empty() ? text : text + " (" + why.where + ")";
}

// Reads one page and puts it behind those before it, as a run would.
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
    WordCounter words(*maker_, opened_.base);
    FileContent file;
    const Reason unread = opened_.source->Read(item, file);
    ExplainFile(item, file, options_, said_);
    if (unread != Reason::kNone) {
      said_.outcome = LeftOutText(unread);
      return;
    }
    const FileContent whole = file;
    ReadingNotes notes;
    Page page;
    const Reason reason =
        ReadPage(item, std::move(file), wishes_, {.stop = &stop_, .notes = &notes}, page);
    CheckStop(stop_);
    ExplainCharset(notes, said_);
    if (reason != Reason::kNone) {
      said_.outcome = LeftOutText(reason);
      ExplainContent(page, notes.markup, false, options_.config, words, said_);
      CheckStop(stop_);
      return;
    }
    ExplainFacts(page, options_, said_);
    const PagePlace place = PlaceOf(item, page);
    ExplainPlace(place, page.facts.canonical, options_.config, said_);
    ExplainFields(page, options_.config.fields, block_.metaFaults, said_);
    ExplainContent(page, notes.markup, true, options_.config, words, said_);
    ExplainWords(page, block_, notes.markup.pictureTexts, options_.config, charset_, words, said_);
    CheckStop(stop_);
    if (item.type == FileType::kHtml) {
      const std::optional<PageAnchors> anchors = AnchorsOfItem(item, whole);
      if (anchors.has_value()) {
        ExplainLinks(*anchors, page.content.links.size(), notes.markup.links, opened_.base, said_);
      }
    }
    said_.isTaken = place.reason == Reason::kNone;
  }

  // Joins the page behind those that come before it. Of `block_` it leaves what was made of it.
  PagePlace PlaceOf(const SourceItem& item, const Page& page) {
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
    PagePlace place;
    place.isCompared = listing_.items.size() <= kComparedPages;
    if (place.isCompared) JoinPagesBefore(item, collection, joined);
    if (item.type == FileType::kPicture && collection.pictures.has_value()) {
      const std::span<const std::string> texts = collection.pictures->texts.Of(item.address);
      place.alternatives.emplace(texts.begin(), texts.end());
    }
    place.reason = maker_->Make(page, block_);
    CheckStop(stop_);
    if (place.reason == Reason::kNone) place.reason = AddPage(block_, collection, place.entry);
    const auto nameOf = [&](uint32_t number) {
      return number < joined.size() ? joined[number] : std::string();
    };
    place.other = collection.addresses.OriginalOf(item.address);
    if (const auto equal = collection.addresses.PageAt(item.address);
        place.other.empty() && equal) {
      place.other = nameOf(*equal);
    }
    if (place.entry.similarTo.has_value()) place.similarTo = nameOf(*place.entry.similarTo);
    return place;
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
