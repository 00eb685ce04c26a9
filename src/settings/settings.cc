#include "settings/settings.h"

namespace vela {

const char* MetaListValue(const Settings& settings, const MetaFieldDef& field, int32_t value) {
  if (field.firstValue < 0 || value < 0 || value >= field.numValues) return nullptr;
  return settings.metaValues.At(field.firstValue + value);
}

TextMode WordMode(const Settings& settings) {
  return {settings.ToLowerSearchWords != 0, IsUtf8(settings)};
}

}  // namespace vela
