#include "output/search_log.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <ctime>

#include "text/ascii.h"
#include "text/edit.h"
#include "text/fixed_text.h"

namespace vela {

namespace {

constexpr size_t kLoggedQuerySize = 2085;  // with terminator
// Names of categories make the longest lines.
using LogLine = FixedText<16384>;

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

void AppendCategories(LogLine& line, const Settings& settings, const SearchRequest& request) {
  if (settings.UseCats == 0) {
    Append(line, ", No cats");
    return;
  }
  if (SearchesAllCategories(request)) {
    Append(line, ", \"Cat = All\"");
    return;
  }
  Append(line, ", \"Cat = ");
  bool isFirst = true;
  for (int32_t category : request.categories) {
    if (category < 0 || category >= settings.categoryNames.size()) continue;
    if (!isFirst) Append(line, "; ");
    Append(line, settings.categoryNames.At(category));
    isFirst = false;
  }
  Append(line, "\"");
}

LogLine MakeLine(const char* query, const Settings& settings, const SearchRequest& request,
                 const SearchLogEntry& entry) {
  LogLine line;
  const auto seconds = static_cast<time_t>(entry.endTime);
  tm day = {};
  localtime_r(&seconds, &day);
  Appendf(line, "%d-%02d-%02d, %02d:%02d:%02d, %.*s, \"%s\", Matches = %d", day.tm_year + 1900,
          day.tm_mon + 1, day.tm_mday, day.tm_hour, day.tm_min, day.tm_sec,
          static_cast<int>(entry.remoteAddress.size()), entry.remoteAddress.data(), query,
          entry.matches);
  Append(line, request.andMode == 1 ? ", AND" : ", OR");
  Appendf(line, ", PerPage = %d, PageNum = %d", request.perPage, entry.page);
  AppendCategories(line, settings, request);
  Appendf(line, ", Time = %.3f, Rec = %d\r\n", entry.seconds, entry.recommended);
  return line;
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
  const LogLine line = MakeLine(query.bytes, settings, request, entry);
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
  const ssize_t written = write(descriptor, line.bytes, View(line).size());
  static_cast<void>(written);  // a full disk costs the line, not the answer
  close(descriptor);
}

}  // namespace vela
