#include "output/settings_listing.h"

namespace vela {

namespace {

void WriteNumber(Response& response, const char* name, int32_t value) {
  WriteOut(response, "<vela:setting name=\"%s\" value=\"%d\" />\n", name, value);
}

void WriteText(Response& response, const char* name, const char* value) {
  WriteOut(response, "<vela:setting name=\"%s\" value=\"%s\" />\n", name, value);
}

void WriteCategories(Response& response, const Settings& settings) {
  if (settings.UseCats != 1) return;
  WriteNumber(response, "NumCats", settings.NumCats);
  for (int32_t i = 0; i < settings.categoryNames.size(); ++i) {
    WriteOut(response, "<vela:category>%s</vela:category>\n", settings.categoryNames.At(i));
  }
}

void WriteAccentTable(Response& response, const Settings& settings) {
  WriteNumber(response, "MapAccents", settings.MapAccents);
  if (!settings.hasAccentTable) return;
  WriteRaw(response, "<vela:setting name=\"AccentChars\">");
  for (const AccentPair& pair : settings.accents) WriteRaw(response, View(pair.accent));
  WriteRaw(response, "</vela:setting>\n");
  WriteRaw(response, "<vela:setting name=\"NormalChars\">");
  for (const AccentPair& pair : settings.accents) WriteRaw(response, View(pair.normal));
  WriteRaw(response, "</vela:setting>\n");
}

}  // namespace

void WriteSettingsListing(Response& response, const Settings& s) {
  WriteNumber(response, "UseUTF8", s.UseUTF8);
  WriteNumber(response, "MinWordLen", s.MinWordLen);
  WriteNumber(response, "Highlighting", s.Highlighting);
  WriteNumber(response, "HighlightLimit", s.HighlightLimit);
  WriteNumber(response, "GotoHighlight", s.GotoHighlight);
  WriteNumber(response, "PdfHighlight", s.PdfHighlight);
  WriteNumber(response, "PluginOpenNewWindow", s.PluginOpenNewWindow);
  WriteNumber(response, "DisplayMetaDesc", s.DisplayMetaDesc);
  WriteNumber(response, "DisplayCatSummary", s.DisplayCatSummary);
  WriteNumber(response, "UseDateTime", s.UseDateTime);
  WriteNumber(response, "DisplayDate", s.DisplayDate);
  WriteNumber(response, "DisplayContext", s.DisplayContext);
  WriteNumber(response, "DisplayTitle", s.DisplayTitle);
  WriteNumber(response, "DisplayTerms", s.DisplayTerms);
  WriteNumber(response, "DisplayScore", s.DisplayScore);
  WriteNumber(response, "DisplayURL", s.DisplayURL);
  WriteNumber(response, "DisplayFilesize", s.DisplayFilesize);
  WriteText(response, "LinkTarget", s.LinkTarget.bytes);
  WriteNumber(response, "UseVelaImage", s.UseVelaImage);
  WriteText(response, "Version", s.Version.bytes);
  WriteNumber(response, "WordSplit", s.WordSplit);
  WriteNumber(response, "SearchAsSubstring", s.SearchAsSubstring);
  WriteNumber(response, "ToLowerSearchWords", s.ToLowerSearchWords);
  WriteNumber(response, "ContextSize", s.ContextSize);
  WriteNumber(response, "MaxContextKeywords", s.MaxContextKeywords);
  WriteNumber(response, "AllowExactPhrase", s.AllowExactPhrase);
  WriteNumber(response, "MaxContextSeeks", s.MaxContextSeeks);
  WriteNumber(response, "MaxSearchTime", s.MaxSearchTime);
  WriteText(response, "WordJoinChars", s.WordJoinChars.bytes);
  WriteNumber(response, "Spelling", s.Spelling);
  WriteNumber(response, "SpellingWhenLessThan", s.SpellingWhenLessThan);
  WriteNumber(response, "Recommended", s.Recommended);
  WriteNumber(response, "RecommendedMax", s.RecommendedMax);
  WriteNumber(response, "UseCats", s.UseCats);
  WriteNumber(response, "SearchMultiCats", s.SearchMultiCats);
  WriteNumber(response, "XMLHighlight", s.XMLHighlight);
  WriteCategories(response, s);
  WriteAccentTable(response, s);
}

}  // namespace vela
