// index_directory.h: the files of an index directory.
//
//   settings.vdat             settings_file.h   read first, by every request
//   vela_dictionary.vdat      dictionary.h      the words
//   vela_wordmap.vdat         word_map.h        which page has which word
//   vela_pageinfo.vdat        page_info.h       sizes, dates, categories, fields of pages
//   vela_pagedata.vdat        page_data.h       addresses, titles, descriptions, pictures
//   vela_pagetext.vdat        page_text.h       passages and phrases
//   vela_spelling.vdat        spelling.h        other spellings
//   vela_corrections.vdat     corrections.h     words that others may be meant as; may be absent
//   vela_synonyms.vdat        synonyms.h        other words for those of a query; may be absent
//   vela_recommended.vdat     recommended.h     recommended pages
//   vela_autocomplete.vdat    autocomplete.h    suggestions while typing
//   vela_lookup.vdat          lookup.h          where things stand in the others; may be absent
//   vela_completions.vdat     completions.h     words of suggestions; may be absent
//   vela_sections.vdat        sections.h        the sections of long pages; may be absent
//   search_template.html      template_file.h   the page around the results; the owner's own
//
// A directory that cannot be replaced as a whole, such as the root of a mounted file system, holds
// its generations inside, each a whole index directory:
//
//   .generations/1/           a former index
//   .generations/2/           the present one
//   .generations/current      a symbolic link to "2", replaced in one step
#pragma once

#include <string_view>

#include "format/autocomplete.h"
#include "format/completions.h"
#include "format/corrections.h"
#include "format/dictionary.h"
#include "format/lookup.h"
#include "format/page_data.h"
#include "format/page_info.h"
#include "format/page_text.h"
#include "format/recommended.h"
#include "format/sections.h"
#include "format/settings_file.h"
#include "format/spelling.h"
#include "format/synonyms.h"
#include "format/template_file.h"
#include "format/word_map.h"

namespace vela {

inline constexpr char kGenerations[] = ".generations";
inline constexpr char kCurrentGeneration[] = ".generations/current";

inline constexpr std::string_view kIndexFileNames[] = {
    kSettingsFileName,     kDictionaryFileName,  kWordMapFileName,  kPageInfoFileName,
    kPageDataFileName,     kPageTextFileName,    kSpellingFileName, kRecommendedFileName,
    kAutoCompleteFileName, kLookupFileName,      kSectionsFileName, kCorrectionsFileName,
    kSynonymsFileName,     kCompletionsFileName,
};

// Whether a file of that name belongs to one run of the indexer, as those above and any of another
// version do: it must not outlive the index.
constexpr bool IsIndexFileName(std::string_view name) {
  return name == kSettingsFileName || (name.starts_with("vela_") && name.ends_with(".vdat"));
}

static_assert([] {
  for (const std::string_view name : kIndexFileNames) {
    if (!IsIndexFileName(name)) return false;
  }
  return true;
}());

}  // namespace vela
