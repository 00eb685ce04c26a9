// loaded_site.h: a small index directory, written and read in by the program's own readers, and a
// response whose bytes can be looked at. For the tests of the index, search and output rooms.
#pragma once

#include <gtest/gtest.h>
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <string>
#include <string_view>
#include <vector>

#include "index/dictionary.h"
#include "index/index_files.h"
#include "output/response.h"
#include "settings/index_directory.h"
#include "settings/settings.h"
#include "settings/settings_file.h"
#include "support/index_builder.h"
#include "support/scratch_directory.h"

namespace vela::support {

// Where there is none.
inline const LookupFile kNoLookup{};

// A nameless file that collects what is written to its descriptor.
class CaptureFile {
 public:
  CaptureFile() : file_(std::tmpfile()) {}
  ~CaptureFile() {
    if (file_ != nullptr) std::fclose(file_);
  }
  CaptureFile(const CaptureFile&) = delete;
  CaptureFile& operator=(const CaptureFile&) = delete;

  int descriptor() const { return fileno(file_); }
  std::string Text() const {
    std::string text;
    char piece[4096];
    ssize_t got = 0;
    while ((got = pread(descriptor(), piece, sizeof piece, static_cast<off_t>(text.size()))) > 0) {
      text.append(piece, static_cast<size_t>(got));
    }
    return text;
  }

 private:
  std::FILE* file_;
};

// A response that keeps its bytes here.
struct CapturedResponse {
  Response response;
  CaptureFile file;

  explicit CapturedResponse(bool xml = false) {
    response.xml = xml;
    response.descriptor = file.descriptor();
  }
  std::string Text() {
    Flush(response);
    return file.Text();
  }
};

// The low `width` bytes of `value`, little-endian.
inline std::string LittleEndian(uint64_t value, size_t width) {
  std::string bytes;
  for (size_t i = 0; i < width; ++i) bytes.push_back(static_cast<char>(value >> (8 * i) & 0xFF));
  return bytes;
}

inline std::string Repeat(std::string_view text, size_t count) {
  std::string out;
  for (size_t i = 0; i < count; ++i) out += text;
  return out;
}

inline PageFields NewPage(std::string_view url, std::string_view title = "",
                          std::string_view description = "", std::string_view image = "") {
  PageFields page;
  page.url = url;
  page.title = title;
  page.description = description;
  page.image = image;
  return page;
}

// A directory with the named files in it, open for the program.
struct OpenDirectory {
  ScratchDirectory scratch;
  IndexDirectory directory;

  OpenDirectory() { OpenIndexDirectory(directory, scratch.path().string()); }
  void Write(const std::string& name, std::string_view bytes) const {
    std::ofstream out(scratch.path() / name, std::ios::binary | std::ios::trunc);
    out.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
  }
};

// The directory of `builder`, with settings, index files and dictionary read in.
struct LoadedSite {
  ScratchDirectory scratch;
  IndexDirectory directory;
  Settings settings;
  IndexFiles files;
  Dictionary dictionary;

  explicit LoadedSite(const IndexBuilder& builder) {
    builder.WriteTo(scratch.path());
    OpenIndexDirectory(directory, scratch.path().string());
    EXPECT_EQ(ReadSettingsFile(settings, directory), SettingsStatus::kOk);
    EXPECT_EQ(OpenIndexFiles(files, directory, settings).status, LoadStatus::kOk);
    // A site without words needs room for one to have a dictionary at all.
    if (settings.NumKeywords > 0) {
      EXPECT_EQ(dictionary.Load(directory, settings, files.lookup).status, DictionaryStatus::kOk);
    }
  }
};

// One definition of a custom meta field.
struct MetaFieldText {
  std::string name;
  int32_t type = 0;
  std::string label;
  int32_t method = 0;
  std::vector<std::string> values = {};
};

// Puts definitions into the settings, as reading their section would.
inline void DefineMetaFields(Settings& settings, const std::vector<MetaFieldText>& fields) {
  settings.UseMetaFields = 1;
  settings.NumMetaFields = static_cast<int32_t>(fields.size());
  settings.metaValues.Release();
  ASSERT_TRUE(settings.metaFields.TryAllocate(fields.size()));
  for (size_t i = 0; i < fields.size(); ++i) {
    MetaFieldDef def;
    Set(def.name, fields[i].name);
    Set(def.label, fields[i].label);
    def.type = fields[i].type;
    def.method = fields[i].method;
    def.numValues = static_cast<int32_t>(fields[i].values.size());
    def.firstValue = fields[i].values.empty() ? -1 : settings.metaValues.size();
    for (const std::string& value : fields[i].values) {
      ASSERT_TRUE(settings.metaValues.TryAdd(value));
    }
    settings.metaFields[i] = def;
  }
}

inline void DefineCategories(Settings& settings, const std::vector<std::string>& names) {
  settings.UseCats = 1;
  settings.NumCats = static_cast<int32_t>(names.size());
  settings.NumCatBytes = (settings.NumCats + 7) / 8;
  settings.categoryNames.Release();
  for (const std::string& name : names) ASSERT_TRUE(settings.categoryNames.TryAdd(name));
}

// Sets the interface texts that the builder's settings file has.
inline void SetLanguageTexts(Settings& settings) {
  for (const LanguageText& text : kLanguageTexts) {
    const std::string line = std::string(text.key) + " = \"" + text.text + "\"";
    ASSERT_EQ(ReadLanguageString(settings.language, text.key, line), LanguageLine::kStored);
  }
}

}  // namespace vela::support
