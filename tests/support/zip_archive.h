// zip_archive.h: documents that are ZIP archives, for the tests of what reads them.
#pragma once

#include <archive.h>
#include <archive_entry.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace vela::support {

using ZipParts = std::vector<std::pair<std::string, std::string>>;  // names and contents

// An archive of those parts in their order, packed.
inline std::string ZipOf(const ZipParts& parts) {
  std::string bytes;
  size_t room = 4096;
  for (const auto& [name, content] : parts) room += name.size() * 4 + content.size() + 4096;
  bytes.resize(room);
  size_t used = 0;
  struct archive* archive = archive_write_new();
  archive_write_set_format_zip(archive);
  archive_write_open_memory(archive, bytes.data(), bytes.size(), &used);
  struct archive_entry* entry = archive_entry_new();
  for (const auto& [name, content] : parts) {
    archive_entry_clear(entry);
    archive_entry_set_pathname(entry, name.c_str());
    archive_entry_set_size(entry, static_cast<la_int64_t>(content.size()));
    archive_entry_set_filetype(entry, AE_IFREG);
    archive_entry_set_perm(entry, 0644);
    archive_write_header(archive, entry);
    archive_write_data(archive, content.data(), content.size());
  }
  archive_entry_free(entry);
  archive_write_close(archive);
  archive_write_free(archive);
  bytes.resize(used);
  return bytes;
}

}  // namespace vela::support
