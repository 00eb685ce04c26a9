// address.h: the addresses of pages, as they are stored and as links are built from them.
#pragma once

#include <string>
#include <string_view>

namespace vela::indexer {

// Makes `base` end in "/". It must be "http://host...", "https://host..." or begin with one "/",
// and hold neither "?" nor "#"; otherwise IndexError (usage).
std::string CheckedBaseUrl(const std::string& base);

// The address of the file `path` (relative, "/" between names) below `base`: every byte that is
// not plain in an address is percent-encoded.
std::string PageAddress(std::string_view base, std::string_view path);

// An address that a person wrote, whole or from somewhere on ("Über uns.html", "%c3%9cber..."), in
// the one form that PageAddress gives. "?" begins a query, whose escapes stay; "#" stays too.
std::string AsEncoded(std::string_view address);

// Resolves `reference` as a link on the page `page` would be; a fragment is dropped. `page` is an
// address made by PageAddress. Empty when the result is neither http nor https (nor rooted, when
// `page` is).
std::string ResolveAddress(std::string_view page, std::string_view reference);

// True when `address` lies below `base`; http and https count as the same, the host's letters too.
bool IsBelow(std::string_view address, std::string_view base);

// `address`, which lies below `base`, with the scheme and host as `base` spells them.
std::string InSpellingOf(std::string_view base, std::string_view address);

// `address` ready for the page data: "&" as "&amp;", and no byte that would end a field, an
// attribute or a line.
std::string StoredAddress(std::string_view address);

// The address that StoredAddress was made of.
std::string PlainAddress(std::string_view stored);

// The folder that a page named "index." stands for, whose address servers answer with it; empty for
// another page.
std::string FolderOfIndexPage(const std::string& address);

// The address of the place `anchor` on a page; all of the anchor but what is plain is
// percent-encoded.
std::string SectionAddress(std::string_view page, std::string_view anchor);

// The words of an address: the path below `base` decoded, without the name's extension.
std::string AddressText(std::string_view address, std::string_view base);

}  // namespace vela::indexer
