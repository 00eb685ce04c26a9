#include "output/search_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

#include "output/grow_text.h"
#include "text/ascii.h"
#include "text/edit.h"
#include "text/fixed_text.h"

namespace vela {

namespace {

constexpr size_t kLoggedQuerySize = 2085;  // with terminator
constexpr int32_t kUsualLineSize = 4096;   // more with many names of categories

struct ErrorText {
  int number;
  const char* text;
};

constexpr ErrorText kErrorTexts[] = {
    {ENOENT, "No such file or directory. "},
    {EBADF, "Bad file number. "},
    {ENOMEM, "Not enough memory for operation. "},
    {EACCES, "Permission denied. "},
    {EEXIST, "File exists. "},
    {EXDEV, "Cross device link. "},
    {EINVAL, "Invalid argument. "},
    {EMFILE, "Too many open files. "},
    {ENOSPC, "No space left on device. "},
    {EDEADLK, "Resource deadlock. "},
};

bool AppendCategories(GrowText& line, const Settings& settings, const SearchRequest& request) {
  if (!UsesCategories(settings)) {
    return line.Appendf(", No cats") >= 0;
  }
  if (SearchesAllCategories(request)) {
    return line.Appendf(", \"Cat = All\"") >= 0;
  }
  if (line.Appendf(", \"Cat = ") < 0) return false;
  bool isFirst = true;
  for (int32_t category : request.categories) {
    if (category < 0 || category >= settings.categoryNames.size()) continue;
    const std::string_view name = settings.categoryNames.At(category);
    if (line.Appendf("%s%.*s", isFirst ? "" : "; ", static_cast<int>(name.size()), name.data()) <
        0) {
      return false;
    }
    isFirst = false;
  }
  return line.Appendf("\"") >= 0;
}

// False when memory is out.
bool MakeLine(GrowText& line, const char* query, const Settings& settings,
              const SearchRequest& request, const SearchLogEntry& entry) {
  if (!line.TryCreate(kUsualLineSize)) return false;
  const auto seconds = static_cast<time_t>(entry.endTime);
  tm day = {};
  localtime_r(&seconds, &day);
  return line.Appendf("%d-%02d-%02d, %02d:%02d:%02d, %.*s, \"%s\", Matches = %d",
                      day.tm_year + 1900, day.tm_mon + 1, day.tm_mday, day.tm_hour, day.tm_min,
                      day.tm_sec, static_cast<int>(entry.remoteAddress.size()),
                      entry.remoteAddress.data(), query, entry.matches) >= 0 &&
         line.Appendf("%s, PerPage = %d, PageNum = %d", request.andMode == 1 ? ", AND" : ", OR",
                      request.perPage, entry.page) >= 0 &&
         AppendCategories(line, settings, request) &&
         line.Appendf(", Time = %.3f, Rec = %d\r\n", entry.seconds, entry.recommended) >= 0;
}

void ReportOpenError(Response& response, int number, const char* logFileName) {
  if (response.xml) WriteRaw(response, "<vela:error>");
  WriteRaw(response, View(SystemErrorMessage(number)));
  WriteOut(response,
           "Log filename and path not found (%s). Check that you specified the correct log "
           "filename in your Indexer settings.<br />",
           logFileName);
  if (response.xml) WriteRaw(response, "</vela:error>\n");
}

}  // namespace

FixedText<64> SystemErrorMessage(int number) {
  FixedText<64> message;
  for (const ErrorText& error : kErrorTexts) {
    if (error.number == number) Set(message, error.text);
  }
  if (IsEmpty(message)) Appendf(message, "Unknown file error: %d. ", number);
  return message;
}

void WriteSearchLog(Response& response, const IndexDirectory& directory, const Settings& settings,
                    const SearchRequest& request, const SearchLogEntry& entry) {
  FixedText<kLoggedQuerySize> query;
  Set(query, entry.query);
  if (entry.query.size() >= kLoggedQuerySize || !ReplaceAll(query, "\"", "\"\"")) return;
  std::replace_if(query.bytes, query.bytes + View(query).size(), IsControl, ' ');
  GrowText line;
  const bool isMade = MakeLine(line, query.bytes, settings, request, entry);
  // The name stands below the index directory even when it begins with a slash.
  FixedText<260> path;
  Append(path, "./");
  Append(path, View(settings.LogFileName));
  const int descriptor = openat(directory.descriptor, path.bytes,
                                O_WRONLY | O_CREAT | O_APPEND | O_CLOEXEC | O_NONBLOCK, 0666);
  if (descriptor < 0) {
    ReportOpenError(response, errno, settings.LogFileName.bytes);
    return;
  }
  // A full disk, and memory that is out, cost the line, not the answer.
  const ssize_t written = isMade ? write(descriptor, line.view().data(), line.view().size()) : 0;
  static_cast<void>(written);
  close(descriptor);
}

}  // namespace vela
