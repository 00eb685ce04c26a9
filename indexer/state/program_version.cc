#include "indexer/state/program_version.h"

#include <elf.h>
#include <link.h>
#include <sys/stat.h>

#include <bit>
#include <cstring>
#include <string_view>

#include "indexer/report/reason.h"
#include "indexer/source/file_reading.h"

namespace vela::indexer {

namespace {

// Of an entry of a note: what follows begins at a multiple of so many bytes.
constexpr size_t kNoteAlignment = 4;
// Of the notes that are meant; the terminator is part of the name.
constexpr char kMaker[] = "GNU";

size_t Aligned(size_t size) {
  return (size + kNoteAlignment - 1) / kNoteAlignment * kNoteAlignment;
}

// The number that the linker gave a program or library, from one of its notes; empty for none.
std::string_view BuildIdIn(std::string_view notes) {
  while (notes.size() >= sizeof(ElfW(Nhdr))) {
    ElfW(Nhdr) note;
    memcpy(&note, notes.data(), sizeof note);
    notes.remove_prefix(sizeof note);
    const size_t name = Aligned(note.n_namesz);
    const size_t value = Aligned(note.n_descsz);
    if (name > notes.size() || value > notes.size() - name) return {};
    const bool isBuildId =
        note.n_type == NT_GNU_BUILD_ID &&
        notes.substr(0, note.n_namesz) == std::string_view(kMaker, sizeof kMaker);
    if (isBuildId) return notes.substr(name, note.n_descsz);
    notes.remove_prefix(name + value);
  }
  return {};
}

void AddFile(const std::string& path, FingerprintOfAll& all) {
  constexpr uint64_t kLimit = uint64_t{1} << 30;
  FileContent file;
  if (ReadRegularFile(path, kLimit, file) == Reason::kNone) all.Add(file.bytes);
}

int AddLoaded(struct dl_phdr_info* info, size_t size, void* data) {
  (void)size;
  FingerprintOfAll& all = *static_cast<FingerprintOfAll*>(data);
  const std::string name = info->dlpi_name == nullptr ? "" : info->dlpi_name;
  const bool isOwn = name.empty();
  if (!isOwn && name.find('/') == name.npos) return 0;  // the kernel's
  std::string_view id;
  for (size_t i = 0; i < info->dlpi_phnum && id.empty(); ++i) {
    const ElfW(Phdr)& header = info->dlpi_phdr[i];
    if (header.p_type != PT_NOTE) continue;
    const ElfW(Addr) at = info->dlpi_addr + header.p_vaddr;
    id = BuildIdIn({std::bit_cast<const char*>(at), header.p_memsz});
  }
  all.Add(name.substr(name.rfind('/') + 1));
  all.Add(id);
  if (id.empty()) AddFile(isOwn ? "/proc/self/exe" : name, all);
  return 0;
}

}  // namespace

Fingerprint ProgramVersion(const std::vector<std::string>& programs) {
  FingerprintOfAll all;
  dl_iterate_phdr(&AddLoaded, &all);
  for (const std::string& program : programs) {
    struct stat info = {};
    all.Add(program.substr(program.rfind('/') + 1));
    if (stat(program.c_str(), &info) != 0) continue;
    all.Add(static_cast<uint64_t>(info.st_size));
    all.Add(static_cast<uint64_t>(info.st_mtim.tv_sec));
  }
  return all.Finish();
}

}  // namespace vela::indexer
