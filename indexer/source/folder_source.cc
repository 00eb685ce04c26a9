#include "indexer/source/folder_source.h"

#include <fnmatch.h>
#include <sys/stat.h>

#include <algorithm>
#include <ctime>
#include <optional>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "indexer/report/index_error.h"
#include "indexer/site/address.h"
#include "indexer/words/lower_copy.h"

namespace vela::indexer {

namespace fs = std::filesystem;

namespace {

// True when `inner` is `outer` or lies in it; both absolute and resolved.
bool IsWithin(const fs::path& inner, const fs::path& outer) {
  return std::ranges::mismatch(outer, inner).in1 == outer.end();
}

// None when the name is not that of a page.
std::optional<FileType> TypeOf(const std::string& name, const SiteFolder& site) {
  const size_t dot = name.rfind('.');
  if (dot == name.npos) return {};
  const std::string ending = LowerAsciiCopy(std::string_view(name).substr(dot + 1));
  for (size_t type = 0; type < kFileTypeCount; ++type) {
    const std::vector<std::string>& endings = site.endings[type];
    if (std::ranges::find(endings, ending) != endings.end()) return static_cast<FileType>(type);
  }
  return {};
}

// Folders that tools make beside a site and that repeat its pages or hold none.
constexpr std::string_view kNeverPages[] = {"_sources", "node_modules", "cgi-bin"};

// The rules for robots, at the one place where they hold.
constexpr std::string_view kRobotsFile = "robots.txt";

// What pages are made with and shown beside. Nobody expects to find it by its words, so that it is
// not worth a line of the summary.
constexpr std::string_view kFurniture[] = {
    "avif", "bmp",         "cgi",  "css",  "cur",   "eot",  "gif", "ico",  "jpeg",
    "jpg",  "js",          "json", "map",  "mjs",   "otf",  "php", "png",  "py",
    "scss", "svg",         "svgz", "tif",  "tiff",  "toml", "ts",  "ttf",  "vdat",
    "wasm", "webmanifest", "webp", "woff", "woff2", "xml",  "xsl", "yaml", "yml",
};

// ".pdf" for "A.PDF"; empty for a name without an ending.
std::string EndingOf(const std::string& name) {
  const size_t dot = name.rfind('.');
  return dot == name.npos ? std::string() : LowerAsciiCopy(std::string_view(name).substr(dot));
}

// Whether the pattern of the owner's names a folder or file.
bool FitsExclusion(std::string pattern, const std::string& name, const std::string& path) {
  if (pattern.ends_with('/')) pattern.pop_back();  // "drafts/" is a folder
  return fnmatch(pattern.c_str(), name.c_str(), 0) == 0 ||
         fnmatch(pattern.c_str(), path.c_str(), 0) == 0;
}

bool IsXml(const std::string& name) {
  const std::string ending = EndingOf(name);
  return !ending.empty() &&
         std::ranges::find(kXmlEndings, ending.substr(1)) != std::end(kXmlEndings);
}

bool IsFurniture(std::string_view ending) {
  return !ending.empty() && std::ranges::find(kFurniture, ending.substr(1)) != std::end(kFurniture);
}

// ".html, .txt": what the name of a page may end in.
std::string EndingsText(const FileEndings& endings) {
  std::string text;
  for (const std::vector<std::string>& ofType : endings) {
    for (const std::string& ending : ofType) text += (text.empty() ? "." : ", .") + ending;
  }
  return text.empty() ? "nothing: none is configured" : text;
}

// A folder or file of the site.
struct Place {
  std::string path;  // as SourceItem has it; "" is the site itself
  std::string file;  // the same, links resolved
};

// What the entry itself is. The folder says so of most, for which the file is not asked.
fs::file_type KindOf(const fs::directory_entry& entry, std::error_code& error) {
  if (entry.is_symlink(error)) return fs::file_type::symlink;
  if (!error && entry.is_directory(error)) return fs::file_type::directory;
  if (!error && entry.is_regular_file(error)) return fs::file_type::regular;
  return error ? fs::file_type::none : entry.symlink_status(error).type();
}

Place Inside(const Place& folder, const std::string& name) {
  if (folder.path.empty()) return {name, name};
  return {(fs::path(folder.path) / name).string(), (fs::path(folder.file) / name).string()};
}

// One reading of the site's folders.
class Walk {
 public:
  explicit Walk(const SiteFolder& site) : site_(site), usedPatterns_(site.excluded.size()) {}

  SiteListing List() {
    seen_.insert("");
    ReadFolders({"", ""});
    // All that lies in the site on its own is known now. A link leads to more only once, whatever
    // links are found behind it.
    while (!links_.empty()) {
      std::vector<Place> links = std::exchange(links_, {});
      std::ranges::sort(links, {}, &Place::path);
      for (const Place& link : links) Follow(link);
    }
    out_.items.SortByPath();  // what was found behind links stands last
    for (size_t i = 0; i < usedPatterns_.size(); ++i) {
      if (usedPatterns_[i]) continue;
      out_.unused.push_back({Reason::kUnusedExclude, {}, site_.excluded[i]});
    }
    return std::move(out_);
  }

 private:
  bool IsExcluded(const std::string& name, const std::string& path) {
    bool excluded =
        name.starts_with('.') || std::ranges::find(kNeverPages, name) != std::end(kNeverPages);
    for (size_t i = 0; i < site_.excluded.size(); ++i) {
      // One pattern is enough; the others are only looked at until each was of use.
      if (excluded && usedPatterns_[i]) continue;
      if (!FitsExclusion(site_.excluded[i], name, path)) continue;
      usedPatterns_[i] = true;
      excluded = true;
    }
    return excluded;
  }

  // What of a folder is still to be taken, in the order of the paths of what lies in it: "a-b.html"
  // comes before "a/b.html", as "-" comes before "/".
  struct Folder {
    struct Entry {
      std::string name;  // of a folder with a "/" at its end
      fs::file_type type = fs::file_type::none;
    };
    Place place;
    std::vector<Entry> entries = {};  // the last one comes first
  };

  // Takes the pages of a folder and of all folders in it, in the order of their paths.
  void ReadFolders(Place first) {
    std::vector<Folder> open;
    open.push_back(ReadFolder(std::move(first)));
    while (!open.empty()) {
      if (open.back().entries.empty()) {
        open.pop_back();
        continue;
      }
      Folder::Entry entry = std::move(open.back().entries.back());
      open.back().entries.pop_back();
      const bool isFolder = entry.name.ends_with('/');
      if (isFolder) entry.name.pop_back();
      Place place = Inside(open.back().place, entry.name);
      if (isFolder) {
        open.push_back(ReadFolder(std::move(place)));
      } else {
        TakeFile(std::move(place), entry.type);
      }
    }
  }

  Folder ReadFolder(Place place) {
    Folder folder = {.place = std::move(place)};
    std::error_code error;
    fs::directory_iterator entries(site_.folder / folder.place.file, error);
    if (error) {
      if (folder.place.path.empty()) {
        throw IndexError(ExitStatus::kFailed, "Cannot read the site folder " +
                                                  site_.folder.string() + ": " + error.message() +
                                                  ". Check --site and the folder's permissions.");
      }
      AddLeftOut(out_.leftOut, Reason::kFolderNotRead, folder.place.path);
      return folder;
    }
    while (entries != fs::directory_iterator()) {
      NoteEntry(*entries, folder);
      entries.increment(error);
      if (error) {
        AddLeftOut(out_.leftOut, Reason::kFolderNotRead, folder.place.path);
        break;
      }
    }
    std::ranges::sort(folder.entries, std::ranges::greater(), &Folder::Entry::name);
    return folder;
  }

  void NoteEntry(const fs::directory_entry& entry, Folder& folder) {
    std::string name = entry.path().filename().string();
    Place place = Inside(folder.place, name);
    std::error_code error;
    const fs::file_type type = KindOf(entry, error);
    if (error) {
      AddLeftOut(out_.leftOut, Reason::kFileNotRead, place.path);
    } else if (IsExcluded(name, place.path)) {
      // Left out on purpose: no reason to report.
    } else if (type == fs::file_type::symlink && site_.followLinks) {
      links_.push_back(std::move(place));
    } else if (type == fs::file_type::symlink) {
      NoteLink(place, Reason::kSymbolicLink);
    } else if (type != fs::file_type::directory) {
      folder.entries.push_back({.name = std::move(name), .type = type});
    } else if (IsNew(place) && site_.folder / place.file != site_.excludedFolder) {
      folder.entries.push_back({.name = std::move(name) + "/", .type = type});
    }
  }

  void TakeFile(Place place, fs::file_type fileType) {
    const std::string name = fs::path(place.path).filename().string();
    const std::optional<FileType> type = TypeOf(name, site_);
    if (!type.has_value()) {
      const std::string ending = EndingOf(name);
      if (fileType == fs::file_type::regular && !IsFurniture(ending)) {
        AddLeftOut(out_.otherKinds, Reason::kOtherKind, place.path, ending);
      }
      return;
    }
    if (fileType != fs::file_type::regular) {
      AddLeftOut(out_.leftOut, Reason::kNotRegular, place.path);
      return;
    }
    if (place.path == kRobotsFile) {
      AddLeftOut(out_.leftOut, Reason::kForRobots, place.path);
      return;
    }
    if (!IsNew(place)) return;
    if (place.file == place.path) place.file.clear();
    std::string address = PageAddress(site_.base, place.path);
    const bool isXml = IsXml(place.path);
    out_.items.Add(
        {std::move(place.path), std::move(address), *type, std::move(place.file), isXml});
  }

  // A link that was not followed is worth a word where it might have led to pages.
  void NoteLink(const Place& link, Reason reason) {
    std::error_code error;
    if (TypeOf(link.path, site_).has_value() || fs::is_directory(site_.folder / link.file, error)) {
      AddLeftOut(out_.leftOut, reason, link.path);
    }
  }

  void Follow(const Place& link) {
    std::error_code error;
    const fs::path target = fs::canonical(site_.folder / link.file, error);
    if (error || !IsWithin(target, site_.folder)) {
      NoteLink(link, Reason::kLinkOutside);
      return;
    }
    if (!site_.excludedFolder.empty() && IsWithin(target, site_.excludedFolder)) return;
    const fs::path file = target.lexically_relative(site_.folder);
    Place place = {link.path, file == "." ? std::string() : file.string()};
    const fs::file_type type = fs::status(target, error).type();
    if (seen_.contains(place.file)) {
      NoteLink(link, Reason::kLinkNotFollowed);
    } else if (type == fs::file_type::directory) {
      seen_.insert(place.file);
      ReadFolders(std::move(place));
    } else {
      TakeFile(std::move(place), type);
    }
  }

  // Whether this is the first way to that folder or page. Without links there is but one.
  bool IsNew(const Place& place) {
    if (!site_.followLinks || seen_.insert(place.file).second) return true;
    AddLeftOut(out_.leftOut, Reason::kLinkNotFollowed, place.path);
    return false;
  }

  const SiteFolder& site_;
  SiteListing out_;
  std::vector<bool> usedPatterns_;        // beside site_.excluded
  std::vector<Place> links_;              // still to be followed
  std::unordered_set<std::string> seen_;  // Place::file of folders and pages
};

// Keeps what was asked for of what the walk has found; the rest of what was asked for is not there.
void KeepOnly(const SiteFolder& site, SiteListing& listing) {
  std::unordered_set<std::string> wanted;
  for (const std::string& name : *site.only) {
    fs::path path = fs::path(name).lexically_normal();
    if (path.is_absolute()) path = path.lexically_relative(site.folder);
    wanted.insert(path.string());
  }
  listing.items.KeepIf([&](const SourceItem& item) { return wanted.contains(item.path); });
  for (LeftOut* each : {&listing.leftOut, &listing.otherKinds}) {
    LeftOut kept;
    for (const LeftOut::Entry& entry : each->entries) {
      if (wanted.erase(entry.path) == 0) continue;
      AddLeftOut(kept, entry.reason, entry.path, entry.where, entry.value);
    }
    *each = std::move(kept);
  }
  for (const SourceItem& item : listing.items) wanted.erase(item.path);
  std::vector<std::string> missing(wanted.begin(), wanted.end());
  std::ranges::sort(missing);
  for (const std::string& path : missing) AddLeftOut(listing.leftOut, Reason::kFileNotFound, path);
}

// What the owner wants of the paths of a file or folder that is left out without a word, and of
// each folder that it lies in; kNone where that is nothing.
Finding WhyPassedOver(const SiteFolder& site, const std::string& path) {
  for (size_t at = 0; at <= path.size();) {
    const size_t end = std::min(path.find('/', at), path.size());
    const std::string name = path.substr(at, end - at);
    const std::string place = path.substr(0, end);
    at = end + 1;
    if (name.starts_with('.')) return {Reason::kHiddenName, {}, name};
    if (std::ranges::find(kNeverPages, name) != std::end(kNeverPages)) {
      return {Reason::kToolFolder, {}, name};
    }
    for (const std::string& pattern : site.excluded) {
      if (FitsExclusion(pattern, name, place)) return {Reason::kExcluded, {}, pattern};
    }
    if (!site.excludedFolder.empty() && site.folder / place == site.excludedFolder) {
      return {Reason::kIndexFolder, {}, {}};
    }
    std::error_code error;
    if (fs::is_symlink(site.folder / place, error)) {
      return {site.followLinks ? Reason::kLinkOutside : Reason::kSymbolicLink, {}, {}};
    }
  }
  return {};
}

}  // namespace

Finding FolderSource::WhyNotListed(const std::string& path) const {
  Finding why = WhyPassedOver(site_, path);
  if (why.reason != Reason::kNone) return why;
  std::error_code error;
  const fs::file_status status = fs::symlink_status(site_.folder / path, error);
  if (!fs::exists(status)) return {Reason::kFileNotFound, {}, {}};
  if (!fs::is_regular_file(status)) return {Reason::kNotRegular, {}, {}};
  if (!TypeOf(path, site_).has_value()) return {Reason::kOtherKind, EndingOf(path), {}};
  return {site_.only.has_value() ? Reason::kNotListed : Reason::kFileNotRead, {}, {}};
}

SiteListing FolderSource::List() {
  SiteListing listing = Walk(site_).List();
  if (site_.only.has_value()) KeepOnly(site_, listing);
  listing.sought = "in " + site_.folder.string() + ". Pages are files that end in " +
                   EndingsText(site_.endings) + ".";
  return listing;
}

std::string FolderSource::FileOf(const SourceItem& item) const {
  return (site_.folder / (item.file.empty() ? item.path : item.file)).string();
}

Reason FolderSource::Read(const SourceItem& item, FileContent& content) const {
  return ReadRegularFile(FileOf(item), site_.fileLimit, content);
}

std::string FolderSource::Version(const SourceItem& item) const {
  constexpr time_t kUnsettled = 2;  // seconds; what clocks of file systems count in at most
  struct stat info = {};
  struct timespec now = {};
  if (lstat(FileOf(item).c_str(), &info) != 0 || !S_ISREG(info.st_mode) ||
      clock_gettime(CLOCK_REALTIME, &now) != 0) {
    return {};
  }
  if (std::max(info.st_mtim.tv_sec, info.st_ctim.tv_sec) >= now.tv_sec - kUnsettled) return {};
  std::string version = std::to_string(info.st_size);
  for (const struct timespec& time : {info.st_mtim, info.st_ctim}) {
    version += " " + std::to_string(time.tv_sec) + "." + std::to_string(time.tv_nsec);
  }
  return version + " " + std::to_string(info.st_ino);
}

}  // namespace vela::indexer
