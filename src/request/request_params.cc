#include "request/request_params.h"

#include <algorithm>
#include <array>

namespace vela {

namespace {

constexpr size_t kDateLimit = 10;
constexpr size_t kMetaTextLimit = 65535;

using ParameterName = FixedText<112>;

ParameterName WithSuffix(std::string_view name, std::string_view suffix) {
  ParameterName full;
  Append(full, name);
  Append(full, suffix);
  return full;
}

// Reads the numbers of a repeated parameter under the two spellings of its list form.
CgiResult ReadList(CgiForm& form, std::string_view name, std::span<int32_t> out, int32_t maximum,
                   size_t& count) {
  const CgiResult encoded =
      CgiGetIntegerList(form, WithSuffix(name, "%5B%5D").bytes, out, maximum, count);
  if (encoded == CgiResult::kOk) return encoded;
  return CgiGetIntegerList(form, WithSuffix(name, "[]").bytes, out, maximum, count);
}

void ReadQuery(RequestParams& params) {
  const char* value = CgiFirstValue(params.form, "vela_query");
  if (value == nullptr) value = CgiFirstValue(params.form, "vela%5Fquery");
  params.queryGiven = value != nullptr;
  Set(params.query, value == nullptr ? "" : value);
}

template <size_t N>
void ReadDate(CgiForm& form, const char* name, FixedText<N>& date) {
  static_assert(N > kDateLimit);
  if (CgiGetString(form, name, date.bytes, kDateLimit) != CgiResult::kOk) Clear(date);
}

bool ReadCategories(RequestParams& params, const Settings& settings) {
  if (!UsesCategories(settings)) return true;
  // No list is longer than the request; one number is stored whatever the count of categories.
  const auto wanted = static_cast<size_t>(std::max(settings.NumCats, 1));
  const auto pairs = static_cast<size_t>(std::max(params.form.pairCount, 1));
  if (!params.catList.TryAllocate(std::min(wanted, pairs))) return false;
  const std::span<int32_t> list(params.catList.data(), params.catList.size());
  if (ReadList(params.form, "vela_cat", list, settings.NumCats, params.catCount) ==
      CgiResult::kOk) {
    return true;
  }
  CgiGetInteger(params.form, "vela_cat", params.catList[0], kAllCategories);
  params.catCount = 1;
  return true;
}

MetaValue ReadMultipleChoice(CgiForm& form, const char* name) {
  std::array<int32_t, kMetaChoiceLimit> numbers = {};
  size_t count = 0;
  if (ReadList(form, name, numbers, static_cast<int32_t>(kMetaChoiceLimit), count) !=
      CgiResult::kOk) {
    CgiGetInteger(form, name, numbers[0], -1);
    count = 1;
  }
  MetaValue value;
  value.chosenCount = static_cast<uint8_t>(count);
  size_t stored = 0;
  for (size_t i = 0; i < count; ++i) {
    // Kept: 255 itself is left out, though it is counted (unit request_params_test).
    if (numbers[i] < kNoMetaChoice) {
      value.chosen[stored++] = static_cast<uint8_t>(numbers[i] & 0xFF);
    }
  }
  return value;
}

bool ReadMetaValues(RequestParams& params, const Settings& settings) {
  if (!UsesMetaFields(settings)) return true;
  if (!params.metaValues.TryAllocate(settings.metaFields.size())) return false;
  for (size_t i = 0; i < settings.metaFields.size(); ++i) {
    const MetaFieldDef& field = settings.metaFields[i];
    MetaValue value;
    if (field.type == kMetaMultiple) {
      value = ReadMultipleChoice(params.form, field.name.bytes);
    } else {
      const char* text = CgiFirstValue(params.form, field.name.bytes);
      if (text != nullptr) value.text = text;
      if (value.text.size() > kMetaTextLimit) value.text = {};
    }
    params.metaValues[i] = value;
  }
  return true;
}

}  // namespace

ParamsResult ReadRequestParams(RequestParams& params, FixedText<2048>& scriptUrl,
                               const CgiSource& source, const Settings& settings) {
  const CgiResult decoding = CgiReadForm(params.form, source);
  if (decoding != CgiResult::kOk) return {ParamsStatus::kUndecodable, decoding};
  CgiForm& form = params.form;
  CgiGetInteger(form, "vela_xml", params.xmlMode, kNotGiven);
  const char* address = source.environment("REMOTE_ADDR");
  Set(params.remoteAddr, address == nullptr ? "unknown" : address);
  ReadQuery(params);
  CgiGetInteger(form, "vela_per_page", params.perPage, 10);
  params.pageDefaulted = CgiGetInteger(form, "vela_page", params.page, 1) != CgiResult::kOk;
  CgiGetInteger(form, "vela_ac", params.autoComplete, 0);
  CgiGetInteger(form, "vela_literal", params.literal, 0);
  CgiGetInteger(form, "vela_and", params.andMode, kNotGiven);
  CgiGetInteger(form, "vela_sort", params.sort, settings.DefaultSort);
  ReadDate(form, "vela_datefrom", params.dateFrom);
  ReadDate(form, "vela_dateto", params.dateTo);
  CgiGetInteger(form, "vela_ltimefrom", params.lastTimeFrom, 0);
  CgiGetInteger(form, "vela_ltimeto", params.lastTimeTo, 0);
  CgiGetInteger(form, "masternode", params.masterNode, 0);
  const std::string_view script = CgiEnv(source, "SCRIPT_NAME");
  if (script.size() < sizeof scriptUrl.bytes) Set(scriptUrl, script);
  if (!ReadCategories(params, settings) || !ReadMetaValues(params, settings)) {
    return {ParamsStatus::kNoMemory};
  }
  return {};
}

void ReleaseRequestData(RequestParams& params) {
  params.catList.Release();
  params.catCount = 0;
  params.metaValues.Release();
  params.form = CgiForm();
}

}  // namespace vela
