// carry_over.h: bringing files of an old index folder into a new one, and removing a folder that is
// done with. A failure throws IndexError or std::filesystem::filesystem_error.
#pragma once

#include <filesystem>
#include <string>

namespace vela::indexer {

// Ends the run with kFailed and "WHAT: WHY.".
[[noreturn]] void FailPublishing(const std::string& what, const std::string& why);

// Files that belong to an index and must not outlive it, whether this run wrote them or not.
bool IsIndexFile(const std::string& name);

// Makes `to` the same as `from`: a link to the same file where that can be and a copy otherwise, a
// link that leads where `from` leads, a folder with everything in it. Pipes and sockets are left.
void LinkOrCopy(const std::filesystem::path& from, const std::filesystem::path& to);

// Gives the folder `to` the owner and permissions of `from`: a log folder stays the web server's.
// Only root can give folders away; for others the folder is their own as all they make.
void TakeOwnerAndMode(const std::filesystem::path& from, const std::filesystem::path& to);

// Removes the folder with everything in it, read-only folders too, as far as that is allowed.
void RemoveFolder(const std::filesystem::path& folder);

}  // namespace vela::indexer
