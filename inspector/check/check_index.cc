#include "inspector/check/check_index.h"

#include "inspector/check/dictionary_check.h"
#include "inspector/check/lookup_check.h"
#include "inspector/check/page_table_check.h"
#include "inspector/check/page_text_check.h"
#include "inspector/check/sections_check.h"
#include "inspector/check/settings_check.h"
#include "inspector/check/spelling_check.h"
#include "inspector/check/suggestions_check.h"
#include "inspector/check/synonyms_check.h"
#include "inspector/check/template_check.h"
#include "inspector/check/word_map_check.h"

namespace vela::inspector {

void CheckIndex(const OpenedIndex& index, Findings& findings, Progress& progress) {
  const CheckInput input = {.index = index, .findings = findings, .progress = progress};
  CheckSettings(input);
  // Nothing is known of the others without them.
  if (index.settingsStatus == SettingsStatus::kCannotOpen) return;
  const std::vector<uint32_t> spellings = CheckDictionary(input);
  const TextStarts texts = CheckPageText(input, spellings);
  CheckWordMap(input, texts);
  CheckPageTable(input);
  CheckSpelling(input);
  CheckCorrections(input);
  CheckSuggestions(input);
  CheckCompletions(input);
  CheckSynonyms(input, texts);
  CheckSections(input, texts);
  CheckLookup(input);
  CheckTemplate(input);
  progress.Clear();
}

}  // namespace vela::inspector
