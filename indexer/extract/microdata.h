// microdata.h: what elements with itemprop say of the page.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "indexer/extract/html_tokens.h"
#include "indexer/extract/page.h"

namespace vela::indexer {

// Adds a meta element "itemprop:NAME" for each property of an item that tells of the page (see
// TellsOfPage), with "itemprop:author.name" for one of an item that is itself a property;
// "itemprop:author" is then its name, else its url. The value is the address of a picture or of
// what a link element names, the attribute content, else the text. Properties of meta and time
// elements are not read here, nor are those that belong to no item. A property of more than 2000
// bytes is left out.
class Microdata {
 public:
  // `filled` must outlive this.
  explicit Microdata(PageContent& filled) : page_(filled) {}

  // An element begins. True when End is to be called for it.
  bool Begin(const Tag& tag);
  void AddText(std::string_view text);
  void End();

 private:
  struct Open {
    bool isItem = false;
    bool isBeside = false;    // an item that does not tell of the page, or inside of one
    std::string name = {};    // of an item: what stands before the names of its properties
    std::string text = {};    // of a property
    std::string called = {};  // of an item: its properties name and url
    std::string url = {};
  };

  Open* Item();
  void BeginItem(const Tag& tag, Open& item);
  void TakeProperty(const Open& property, const std::string& value);
  void Add(const std::string& name, std::string value);

  PageContent& page_;
  std::vector<Open> open_;
};

}  // namespace vela::indexer
