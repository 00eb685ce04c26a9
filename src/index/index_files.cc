#include "index/index_files.h"

#include "index/page_data.h"
#include "index/page_text.h"

namespace vela {

namespace {

void WriteCannotOpen(Response& response, const char* name) {
  if (response.xml) WriteRaw(response, "<vela:error>");
  WriteOut(response, "Unable to open %s<br />Check file permissions and that file exists", name);
  if (response.xml) WriteRaw(response, "</vela:error>\n");
}

bool OpenRecommended(RecommendedTies& ties, const IndexDirectory& directory,
                     const Settings& settings, Response& response) {
  switch (LoadRecommended(ties, directory, settings)) {
    case RecommendedStatus::kOk:
      return true;
    case RecommendedStatus::kCannotOpen:
      WriteRaw(response,
               "Can not find one or more of the Vela index files.<br />Please make sure the "
               "generated index files are uploaded to the same path as this search script.<br />"
               "Also check file permissions have been set to allow reading.<br />");
      return false;
    case RecommendedStatus::kNoMemory:
      break;
  }
  WriteError(response, "Error: out of memory", ErrorEnd::kPlain);
  return false;
}

bool OpenSpelling(SpellingTable& table, const IndexDirectory& directory, const Settings& settings,
                  Response& response) {
  switch (LoadSpelling(table, directory, settings)) {
    case SpellingStatus::kOk:
      return true;
    case SpellingStatus::kCannotOpen:
      // Kept: without the line breaks of the other messages (golden index/spelling_missing).
      WriteError(response,
                 "Can not find one or more of the Vela index files. Please make sure the "
                 "generated index files are uploaded to the same path as this search script. Also "
                 "check file permissions have been set to allow reading.",
                 ErrorEnd::kLineFeed);
      return false;
    case SpellingStatus::kNoMemory:
      break;
  }
  WriteError(response, "Error: Out of memory", ErrorEnd::kLineFeed);
  return false;
}

bool OpenPageText(FileImage& file, const IndexDirectory& directory, Response& response) {
  if (!file.Open(directory, kPageTextFileName, false)) {
    WriteCannotOpen(response, kPageTextFileName);
    return false;
  }
  if (IsPageTextPlaceholder(file.bytes())) {
    WriteError(response,
               "<b>Vela config error:</b> The \"vela_pagetext.vdat\" file is not properly created "
               "for the search settings specified in \"setting.php\"<br />Please check that you "
               "have re-indexed and try again.",
               ErrorEnd::kLineFeed);
    file.Close();
    return false;
  }
  return true;
}

}  // namespace

bool OpenIndexFiles(IndexFiles& files, const IndexDirectory& directory, const Settings& settings,
                    Response& response) {
  if (!files.pageData.Open(directory, kPageDataFileName, false)) {
    WriteCannotOpen(response, kPageDataFileName);
    return false;
  }
  if (settings.Recommended == 1 &&
      !OpenRecommended(files.recommended, directory, settings, response)) {
    return false;
  }
  const PageInfoStatus status = LoadPageInfo(files.pages, directory, settings);
  if (status != PageInfoStatus::kOk) {
    WritePageInfoError(response, status);
    WriteCannotOpen(response, kPageInfoFileName);
    return false;
  }
  if (NeedsPageText(settings)) {
    if (!OpenPageText(files.pageText, directory, response)) return false;
  }
  if (!files.wordMap.Open(directory, kWordMapFileName, false)) {
    WriteError(response,
               "Can not find one or more of the Vela index files.<br />Please make sure the "
               "generated index files are uploaded to the same path as this search script.<br />"
               "Also check file permissions have been set to allow reading.<br />\n",
               ErrorEnd::kLineFeed);
    return false;
  }
  return settings.Spelling != 1 || OpenSpelling(files.spelling, directory, settings, response);
}

void CloseIndexFiles(IndexFiles& files) {
  files.pageData.Close();
  files.pageText.Close();
  files.wordMap.Close();
  files.recommended = RecommendedTies();
  files.spelling = SpellingTable();
  files.pages.file.Close();
  files.pages.image = {};
  files.pages.pageCount = 0;
  files.pages.starts.Release();
}

}  // namespace vela
