#include "output/search_form.h"

#include <algorithm>

#include "output/markup.h"
#include "text/numbers.h"
#include "text/owned_array.h"

namespace vela {

namespace {

constexpr int32_t kAdvancedForm = 2;
constexpr int32_t kPerPageChoices[] = {10, 20, 50, 100};
constexpr size_t kEscapedMetaValueSize = 65585;  // with terminator

// What every part of the form is made from.
struct FormInput {
  OutputSections& sections;
  const Settings& settings;
  const SearchRequest& request;
  const char* Language(Str key) const { return Text(settings.language, key); }
};

void AddHidden(const FormInput& in, const char* name, int32_t value) {
  AppendSection(in.sections, Section::kFormStart,
                "<input type=\"hidden\" name=\"%s\" value=\"%d\" />\n", name, value);
}

void AddResultsPerPage(const FormInput& in) {
  AppendSection(in.sections, Section::kResultsPerPage,
                "<span class=\"vela_results_per_page\"><label for=\"vela_per_page\">%s</label>\n",
                in.Language(Str::kFormResultsPerPage));
  AppendSectionRaw(in.sections, Section::kResultsPerPage,
                   "<select name=\"vela_per_page\" id=\"vela_per_page\">\n");
  for (int32_t choice : kPerPageChoices) {
    AppendSection(in.sections, Section::kResultsPerPage, "<option%s>%d</option>\n",
                  choice == in.request.perPage ? " selected=\"selected\"" : "", choice);
  }
  AppendSectionRaw(in.sections, Section::kResultsPerPage, "</select><br /><br /></span>\n");
}

void AddCategoryBoxes(const FormInput& in) {
  const bool all = SearchesAllCategories(in.request);
  AppendSectionRaw(in.sections, Section::kCategories, "<ul>\n");
  AppendSection(in.sections, Section::kCategories,
                "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat-1\" value=\"-1\"%s>"
                "<label for=\"vela_cat-1\">%s</label></input></li>\n",
                all ? " checked=\"checked\"" : "", in.Language(Str::kFormCategoryAll));
  for (int32_t i = 0; i < in.settings.categoryNames.size(); ++i) {
    AppendSection(in.sections, Section::kCategories,
                  "<li><input type=\"checkbox\" name=\"vela_cat[]\" id=\"vela_cat%d\" value=\"%d\"",
                  i, i);
    if (!all) {
      // Kept: a category named twice by the request is marked twice (golden
      // output/form_category_box_twice).
      for (int32_t selected : in.request.categories) {
        if (selected == i) {
          AppendSectionRaw(in.sections, Section::kCategories, " checked=\"checked\"");
        }
      }
    }
    AppendSection(in.sections, Section::kCategories,
                  " /><label for=\"vela_cat%d\">%s</label></li>\n", i,
                  in.settings.categoryNames.At(i));
  }
  AppendSectionRaw(in.sections, Section::kCategories, "</ul><br /><br /></span>\n");
}

void AddCategoryList(const FormInput& in) {
  const int32_t selected =
      in.request.categories.empty() ? kAllCategories : in.request.categories[0];
  AppendSectionRaw(in.sections, Section::kCategories,
                   "<select name=\"vela_cat[]\" id=\"vela_cat\">");
  AppendSection(in.sections, Section::kCategories, "<option value=\"-1\">%s</option>",
                in.Language(Str::kFormCategoryAll));
  for (int32_t i = 0; i < in.settings.categoryNames.size(); ++i) {
    AppendSection(in.sections, Section::kCategories, "<option value=\"%d\"%s>%s</option>", i,
                  selected == i ? " selected=\"selected\"" : "", in.settings.categoryNames.At(i));
  }
  AppendSectionRaw(in.sections, Section::kCategories, "</select>&nbsp;&nbsp;\n");
}

void AddCategories(const FormInput& in) {
  if (!UsesCategories(in.settings)) return;
  AppendSection(in.sections, Section::kCategories,
                "<span class=\"vela_categories\"><label for=\"vela_cat\">%s</label>",
                in.Language(Str::kFormCategory));
  if (in.settings.SearchMultiCats != 0) {
    AddCategoryBoxes(in);
  } else {
    AddCategoryList(in);
  }
  // Kept: the check boxes have closed the span already (golden output/form_category_boxes).
  AppendSectionRaw(in.sections, Section::kCategories, "</span>\n");
}

void AddListOption(const FormInput& in, const MetaFieldDef& field, int32_t value, int32_t marks) {
  AppendSection(in.sections, Section::kCustomMetaOptions, "<option value=\"%d\"", value);
  for (int32_t i = 0; i < marks; ++i) {
    AppendSectionRaw(in.sections, Section::kCustomMetaOptions, " selected=\"selected\"");
  }
  AppendSection(in.sections, Section::kCustomMetaOptions, ">%s</option>",
                MetaListValue(in.settings, field, value));
}

void AddMetaDropDown(const FormInput& in, const MetaFieldDef& field, const char* id,
                     const MetaValue& value) {
  AppendSection(in.sections, Section::kCustomMetaOptions,
                "<label for=\"%s\">%s: </label><select name=\"%s\" id=\"%s\" "
                "class=\"vela_metaform_dropdown\">\n",
                id, field.label.bytes, field.name.bytes, id);
  AppendSection(in.sections, Section::kCustomMetaOptions, "<option value=\"-1\">%s</option>",
                in.Language(Str::kFormCategoryAll));
  const int32_t selected = value.text.empty() ? -1 : ReadDecimal32(value.text);
  for (int32_t j = 0; j < field.numValues; ++j) AddListOption(in, field, j, j == selected ? 1 : 0);
  AppendSectionRaw(in.sections, Section::kCustomMetaOptions, "</select>\n");
}

void AddMetaMultiple(const FormInput& in, const MetaFieldDef& field, const char* id,
                     const MetaValue& value) {
  AppendSection(in.sections, Section::kCustomMetaOptions,
                "<label for=\"%s\">%s: </label><select multiple id=\"%s\" name=\"%s[]\" "
                "class=\"vela_metaform_multi\">\n",
                id, field.label.bytes, id, field.name.bytes);
  AppendSection(in.sections, Section::kCustomMetaOptions, "<option value=\"-1\">%s</option>",
                in.Language(Str::kFormCategoryAll));
  for (int32_t j = 0; j < field.numValues; ++j) {
    const auto* end = value.chosen + value.chosenCount;
    AddListOption(in, field, j, static_cast<int32_t>(std::count(value.chosen, end, j)));
  }
  AppendSectionRaw(in.sections, Section::kCustomMetaOptions, "</select>&nbsp;&nbsp;\n");
}

// A field with a text input; `escaped` is the request's value.
void AddMetaInput(const FormInput& in, const MetaFieldDef& field, const char* id,
                  const char* escaped) {
  const char* label = field.label.bytes;
  const char* name = field.name.bytes;
  switch (field.type) {
    case kMetaNumeric:
      AppendSection(in.sections, Section::kCustomMetaOptions,
                    "<label for=\"%s\">%s: </label><input type=\"text\" id=\"%s\" name=\"%s\" "
                    "size=\"20\" value=\"%s\" class=\"vela_metaform_numeric\" />\n",
                    id, label, id, name, escaped);
      break;
    case kMetaMoney:
      AppendSection(in.sections, Section::kCustomMetaOptions,
                    "<label for=\"%s\">%s: </label>%s<input type=\"text\" id=\"%s\" name=\"%s\" "
                    "size=\"7\" value=\"%s\" class=\"vela_metaform_money\" />\n",
                    id, label, in.settings.MetaMoneyCurrency.bytes, id, name, escaped);
      break;
    default:
      AppendSection(in.sections, Section::kCustomMetaOptions,
                    "<label for=\"%s\">%s: </label><input type=\"text\" id=\"%s\" name=\"%s\" "
                    "size=\"20\" value=\"%s\" class=\"vela_metaform_text\" />\n",
                    id, label, id, name, escaped);
      break;
  }
}

void AddMetaFields(const FormInput& in) {
  if (!UsesMetaFields(in.settings)) return;
  AppendSectionRaw(in.sections, Section::kCustomMetaOptions, "<span class=\"vela_metaform\">\n");
  const size_t count = std::min(in.settings.metaFields.size(), in.request.metaValues.size());
  for (size_t i = 0; i < count; ++i) {
    const MetaFieldDef& field = in.settings.metaFields[i];
    const MetaValue& value = in.request.metaValues[i];
    FixedText<128> id;
    Appendf(id, "vela_metaform_%s", field.name.bytes);
    if (field.type == kMetaDropDown) {
      AddMetaDropDown(in, field, id.bytes, value);
    } else if (field.type == kMetaMultiple) {
      AddMetaMultiple(in, field, id.bytes, value);
    } else {
      OwnedArray<char> escaped;
      const size_t room = std::min(value.text.size() * 5 + 1, kEscapedMetaValueSize);
      if (!escaped.TryAllocate(room)) continue;
      EscapeRequestText(value.text, escaped.data(), room);
      AddMetaInput(in, field, id.bytes, escaped.data());
    }
  }
  AppendSectionRaw(in.sections, Section::kCustomMetaOptions, "</span>\n");
}

void AddMatchOptions(const FormInput& in) {
  const char* checked = " checked=\"checked\"";
  const bool all = in.request.andMode != 0;
  AppendSection(in.sections, Section::kMatchOptions,
                "<span class=\"vela_match\"><label for=\"vela_match\">%s</label>\n",
                in.Language(Str::kFormMatch));
  AppendSection(in.sections, Section::kMatchOptions,
                "<label for=\"vela_match_any\"><input type=\"radio\" id=\"vela_match_any\" "
                "name=\"vela_and\" value=\"0\"%s />%s</label>\n",
                all ? "" : checked, in.Language(Str::kFormAnySearchWords));
  AppendSection(in.sections, Section::kMatchOptions,
                "<label for=\"vela_match_all\"><input type=\"radio\" id=\"vela_match_all\" "
                "name=\"vela_and\" value=\"1\"%s />%s</label>\n",
                all ? checked : "", in.Language(Str::kFormAllSearchWords));
}

void AddDateInput(const FormInput& in, const char* name, Str label, std::string_view typed) {
  AppendSection(in.sections, Section::kDateRange,
                "<label for=\"%s\">%s </label><input id=\"%s\" name=\"%s\" value=\"%s\">"
                "<input type=\"button\" value=\"%s\" onclick=\"displayDatePicker('%s', false, "
                "'%s');\" />",
                name, in.Language(label), name, name, EscapedRequestText<128>(typed).bytes,
                in.Language(Str::kFormDateButton), name,
                in.settings.DateRangeFormat == 1 ? "mdy" : "dmy");
}

void AddDateRange(const FormInput& in) {
  if (!SearchesDates(in.settings)) return;
  AppendSectionRaw(in.sections, Section::kDateRange, "<span class=\"vela_daterange\">\n");
  AddDateInput(in, "vela_datefrom", Str::kFormDateFrom, View(in.request.dateFrom));
  AddDateInput(in, "vela_dateto", Str::kFormDateTo, View(in.request.dateTo));
  AppendSectionRaw(in.sections, Section::kDateRange, "</span>\n");
}

void AddAdvancedParts(const FormInput& in) {
  AddResultsPerPage(in);
  AddCategories(in);
  AddMetaFields(in);
  AddMatchOptions(in);
  AddHidden(in, "vela_sort", in.request.sort);
  AddHidden(in, "vela_xml", 0);
  AppendSectionRaw(in.sections, Section::kMatchOptions, "<br /><br /></span>\n");
  AddDateRange(in);
}

}  // namespace

void FillSearchForm(OutputSections& sections, const Settings& settings,
                    const SearchRequest& request, const char* displayQuery,
                    std::string_view scriptUrl) {
  if (settings.FormFormat < 1) return;
  const FormInput in = {.sections = sections, .settings = settings, .request = request};
  FixedText<6144> action;
  AppendSafeAddress(action, scriptUrl);
  AppendSection(sections, Section::kFormStart,
                "<form method=\"get\" action=\"%s\" class=\"vela_searchform\">\n", action.bytes);
  AppendSectionRaw(sections, Section::kFormEnd, "</form>\n");
  AppendSection(sections, Section::kSearchBox,
                "<label for=\"vela_searchbox\">%s</label><input type=\"text\" name=\"vela_query\" "
                "size=\"20\" value=\"%s\" id=\"vela_searchbox\" class=\"vela_searchbox\" />\n",
                in.Language(Str::kFormSearchFor), displayQuery);
  AppendSection(sections, Section::kSearchButton,
                "<input type=\"submit\" value=\"%s\" class=\"vela_button\" />\n",
                in.Language(Str::kFormSubmitButton));
  if (settings.FormFormat == kAdvancedForm) {
    AddAdvancedParts(in);
    return;
  }
  AddHidden(in, "vela_per_page", request.perPage);
  AddHidden(in, "vela_and", request.andMode);
  AddHidden(in, "vela_sort", request.sort);
  AddHidden(in, "vela_xml", 0);  // the form is only drawn when the answer is no XML
}

}  // namespace vela
