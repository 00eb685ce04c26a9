#include "output/result_facts.h"

namespace vela {

namespace {

// Shorter descriptions are not worth a line.
constexpr size_t kShortestDescription = 3;

void AppendMoney(MetaText& text, const Settings& settings, int32_t hundredths) {
  Append(text, View(settings.MetaMoneyCurrency));
  if (settings.MetaMoneyShowDec != 0) {
    Appendf(text, "%01.2f", hundredths / 100.0);
  } else {
    Appendf(text, "%d", hundredths / 100);
  }
}

void AppendListValues(MetaText& text, const Settings& settings, const MetaFieldDef& field,
                      std::string_view indexes) {
  bool isFirst = true;
  for (char c : indexes) {
    const char* value = MetaListValue(settings, field, static_cast<unsigned char>(c));
    if (value == nullptr) continue;
    if (!isFirst) Append(text, ", ");
    Append(text, value);
    isFirst = false;
  }
}

}  // namespace

bool ShowsImage(const Settings& settings, const PageTexts& texts) {
  return ShowsImages(settings) && !texts.image.empty();
}

bool ShowsDescription(const Settings& settings, const PageTexts& texts) {
  return settings.DisplayMetaDesc == 1 && texts.description.size() >= kShortestDescription;
}

bool ReadShownDate(const ResultBlocks& blocks, const Result& result, ShownDate& date) {
  date.seconds = PageDateTime(blocks.files.pages, result.entry.page);
  if (blocks.settings.DisplayDate != 1 || date.seconds < 1) return false;
  const time_t time = date.seconds;
  return gmtime_r(&time, &date.day) != nullptr;
}

PageTextReader ContextReader(const ResultBlocks& blocks) {
  PageTextReader reader;
  reader.file = blocks.files.pageText.bytes();
  reader.tokenSize = blocks.settings.DictIDLen;
  return reader;
}

MetaText MetaValueText(const Settings& settings, const MetaFieldDef& field, const MetaData& data) {
  MetaText text;
  switch (field.type) {
    case kMetaNumeric:
      Appendf(text, "%d", data.number);
      break;
    case kMetaMoney:
      AppendMoney(text, settings, data.number);
      break;
    case kMetaDropDown: {
      const char* value = MetaListValue(settings, field, data.number);
      if (value != nullptr) Append(text, value);
      break;
    }
    case kMetaMultiple:
      AppendListValues(text, settings, field, data.indexes);
      break;
    default:
      Append(text, data.text);
      break;
  }
  return text;
}

}  // namespace vela
