// inspected_site.h: the index of a small site that uses every file, for the tests of the inspector,
// whole or with something changed in it.
#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include "format/index_directory.h"
#include "inspector/check/check_index.h"
#include "inspector/findings/report_text.h"
#include "inspector/opened/opened_index.h"
#include "support/indexer_site.h"

namespace vela::inspector {

// A site with every file of an index: categories, meta fields, recommended pages, synonyms and the
// sections of a long page.
struct FullSite : indexer::TestSite {
  FullSite() {
    using indexer::FieldRule;
    indexer::SiteConfig& config = options.config;
    config.categories = {{"News", {"https://x.example/news/*"}}, {"Pets", {"*/cats.html"}}};
    config.fields = {FieldRule{"price", "price", "Price", kMetaMoney, 0, {}},
                     FieldRule{"colour", "colour", "Colour", kMetaDropDown, 0, {"Black", "White"}},
                     FieldRule{"author", "author", "Author", kMetaText, 0, {}}};
    config.synonyms = {{{"kitten", "young cat"}}, {{"dog", "hound"}}};
    config.recommended = {{.keywords = "cats", .address = "/cats.html", .where = "test"},
                          {.keywords = "shop",
                           .address = "https://shop.example/",
                           .where = "test",
                           .title = "Our shop"}};
    config.stemming = kStemEnglish;
    Add("cats.html",
        "<html><head><title>Cats</title><meta name=description content='All about cats'>"
        "<meta name=price content=12.50><meta name=colour content=Black>"
        "<meta name=author content=Ann></head><body><h1>Cats</h1>A young cat, or kitten, and the "
        "hound. Café &amp; more.</body></html>");
    Add("news/dogs.html",
        "<title>Dogs &amp; hounds</title><meta name=price content=7><body>The dog (a hound) and "
        "the young cat/dog.");
    std::string guide = "<title>Guide</title><body><h1>Guide</h1>";
    for (const char* part : {"Food", "Sleep", "Play"}) {
      guide += std::string("<h2 id=") + part + ">" + part + "</h2>";
      for (int i = 0; i < 150; ++i) guide += "pets word" + std::to_string(i % 40) + " ";
    }
    Add("guide.html", guide, 1200000000);
    Add("plain.txt", "Plain words of a text about pets\n\nand one dog more");
  }
};

// The finished index, made once for all tests.
inline const std::map<std::string, std::string>& FullSiteFiles() {
  static const std::map<std::string, std::string> files = [] {
    const FullSite site;
    site.Build();
    std::map<std::string, std::string> read;
    for (const auto& entry : std::filesystem::directory_iterator(site.index)) {
      if (!entry.is_regular_file()) continue;
      read.emplace(entry.path().filename().string(), indexer::ReadFile(entry.path()));
    }
    return read;
  }();
  return files;
}

// That index in a folder of its own.
class InspectedSite {
 public:
  InspectedSite() {
    for (const auto& [name, bytes] : FullSiteFiles()) Write(name, bytes);
  }

  std::filesystem::path path() const { return scratch_.path(); }
  std::string Read(const std::string& name) const { return indexer::ReadFile(path() / name); }
  void Write(const std::string& name, std::string_view bytes) const {
    indexer::WriteFile(path() / name, bytes);
  }
  void Remove(const std::string& name) const { std::filesystem::remove(path() / name); }

  std::unique_ptr<OpenedIndex> Open() const {
    auto index = std::make_unique<OpenedIndex>();
    OpenIndex(*index, path().string());
    return index;
  }
  Findings Check(size_t most = 10) const {
    Findings findings(most);
    Progress progress(false);
    CheckIndex(*Open(), findings, progress);
    return findings;
  }

 private:
  support::ScratchDirectory scratch_;
};

}  // namespace vela::inspector
