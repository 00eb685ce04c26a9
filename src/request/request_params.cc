#include "request/request_params.h"

#include <algorithm>
#include <array>

namespace vela {

namespace {

constexpr size_t kDateLimit = 10;
constexpr size_t kMetaTextLimit = 65535;
constexpr size_t kMetaListLimit = 255;
constexpr int32_t kMetaNoIndex = 255;

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
  const char* value = CgiFirstValue(params.Form, "vela_query");
  if (value == nullptr) value = CgiFirstValue(params.Form, "vela%5Fquery");
  params.QueryGiven = value != nullptr;
  Set(params.Query, value == nullptr ? "" : value);
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
  const auto pairs = static_cast<size_t>(std::max(params.Form.pairCount, 1));
  if (!params.CatList.TryAllocate(std::min(wanted, pairs))) return false;
  const std::span<int32_t> list(params.CatList.data(), params.CatList.size());
  if (ReadList(params.Form, "vela_cat", list, settings.NumCats, params.CatCount) ==
      CgiResult::kOk) {
    return true;
  }
  CgiGetInteger(params.Form, "vela_cat", params.CatList[0], kAllCategories);
  params.CatCount = 1;
  return true;
}

MetaValue ReadMultipleChoice(CgiForm& form, const char* name) {
  std::array<int32_t, kMetaListLimit> numbers = {};
  size_t count = 0;
  if (ReadList(form, name, numbers, static_cast<int32_t>(kMetaListLimit), count) !=
      CgiResult::kOk) {
    CgiGetInteger(form, name, numbers[0], -1);
    count = 1;
  }
  MetaValue value;
  value.chosenCount = static_cast<uint8_t>(count);
  size_t stored = 0;
  for (size_t i = 0; i < count; ++i) {
    // Kept: 255 itself is left out, though it is counted (unit request_params_test).
    if (numbers[i] < kMetaNoIndex) value.chosen[stored++] = static_cast<uint8_t>(numbers[i] & 0xFF);
  }
  return value;
}

bool ReadMetaValues(RequestParams& params, const Settings& settings) {
  if (!UsesMetaFields(settings)) return true;
  if (!params.MetaValues.TryAllocate(settings.metaFields.size())) return false;
  for (size_t i = 0; i < settings.metaFields.size(); ++i) {
    const MetaFieldDef& field = settings.metaFields[i];
    MetaValue value;
    if (field.type == kMetaMultiple) {
      value = ReadMultipleChoice(params.Form, field.name.bytes);
    } else {
      const char* text = CgiFirstValue(params.Form, field.name.bytes);
      if (text != nullptr) value.text = text;
      if (value.text.size() > kMetaTextLimit) value.text = {};
    }
    params.MetaValues[i] = value;
  }
  return true;
}

}  // namespace

ParamsResult ReadRequestParams(RequestParams& params, FixedText<2048>& scriptUrl,
                               const CgiSource& source, const Settings& settings) {
  const CgiResult decoding = CgiReadForm(params.Form, source);
  if (decoding != CgiResult::kOk) return {ParamsStatus::kUndecodable, decoding};
  CgiForm& form = params.Form;
  CgiGetInteger(form, "vela_xml", params.XmlMode, kNotGiven);
  const char* address = source.environment("REMOTE_ADDR");
  Set(params.RemoteAddr, address == nullptr ? "unknown" : address);
  ReadQuery(params);
  CgiGetInteger(form, "vela_per_page", params.PerPage, 10);
  params.PageDefaulted = CgiGetInteger(form, "vela_page", params.Page, 1) != CgiResult::kOk;
  CgiGetInteger(form, "vela_ac", params.AutoComplete, 0);
  CgiGetInteger(form, "vela_and", params.AndMode, kNotGiven);
  CgiGetInteger(form, "vela_sort", params.Sort, settings.DefaultSort);
  ReadDate(form, "vela_datefrom", params.DateFrom);
  ReadDate(form, "vela_dateto", params.DateTo);
  CgiGetInteger(form, "vela_ltimefrom", params.LastTimeFrom, 0);
  CgiGetInteger(form, "vela_ltimeto", params.LastTimeTo, 0);
  CgiGetInteger(form, "masternode", params.MasterNode, 0);
  const std::string_view script = CgiEnv(source, "SCRIPT_NAME");
  if (script.size() < sizeof scriptUrl.bytes) Set(scriptUrl, script);
  if (!ReadCategories(params, settings) || !ReadMetaValues(params, settings)) {
    return {ParamsStatus::kNoMemory};
  }
  return {};
}

void ReleaseRequestData(RequestParams& params) {
  params.CatList.Release();
  params.CatCount = 0;
  params.MetaValues.Release();
  params.Form = CgiForm();
}

}  // namespace vela
