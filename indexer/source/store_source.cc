#include "indexer/source/store_source.h"

#include "indexer/source/fingerprint.h"
#include "indexer/source/media_type.h"

namespace vela::indexer {

StoreSource::~StoreSource() {
  store_.reset();
  if (wishes_.isTemporary) RemoveDatabase(file_);
}

SiteListing StoreSource::List() {
  SiteListing listing;
  listing.sought = wishes_.sought;
  for (StoredPage& page : store_->List()) {
    const std::string path = page.address.substr(0, page.address.find('?'));
    const std::optional<FileType> type = PageType(page.mediaType, path, wishes_.endings);
    if (page.reason == Reason::kOtherKind || (page.reason == Reason::kNone && !type.has_value())) {
      if (IsFurnitureType(page.mediaType)) continue;
      AddLeftOut(listing.otherKinds, Reason::kOtherKind, page.address, page.mediaType);
    } else if (page.reason != Reason::kNone) {
      AddLeftOut(listing.leftOut, page.reason, page.address);
    } else {
      listing.items.Add({.path = page.address,
                         .address = page.address,
                         .type = *type,
                         .isXml = IsXmlType(page.mediaType),
                         .mediaType = std::move(page.mediaType)});
    }
  }
  return listing;
}

Reason StoreSource::Read(const SourceItem& item, FileContent& content) const {
  return store_->Read(item.address, wishes_.pageLimit, content);
}

std::string StoreSource::Version(const SourceItem& item) const {
  FileContent content;
  if (Read(item, content) != Reason::kNone) return {};
  return TextOf(FingerprintOf(content.bytes)) + " " + std::to_string(content.modifiedTime) + " " +
         content.charset;
}

Finding StoreSource::WhyNotListed(const std::string&) const {
  return {Reason::kNotFetched, {}, {}};
}

}  // namespace vela::indexer
