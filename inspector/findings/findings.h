// findings.h: what the checks of an index have found.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "inspector/findings/fault.h"

namespace vela::inspector {

// Where in a file.
struct Place {
  enum class Unit : uint8_t { kWholeFile, kLine, kByte };
  Unit unit = Unit::kWholeFile;
  uint64_t number = 0;  // lines count from 1, bytes from 0
};
constexpr Place kWholeFile;
constexpr Place Line(uint64_t number) { return {Place::Unit::kLine, number}; }
constexpr Place Byte(uint64_t offset) { return {Place::Unit::kByte, offset}; }

struct Finding {
  Fault fault = Fault::kUnreadable;
  std::string_view file;  // its name, a constant
  Place place;
  std::string detail;  // of this one: which word, which number; may hold any bytes
};

// Of one fault of one file.
struct FindingCount {
  std::string_view file;
  Fault fault = Fault::kUnreadable;
  uint64_t found = 0;
  uint64_t kept = 0;
};

class Findings {
 public:
  // Keeps so many of one fault of one file; all are counted.
  explicit Findings(size_t most) : most_(most) {}

  void Add(Fault fault, std::string_view file, Place place, std::string detail);

  // The index answers no search as it is.
  void SetUnusable() { isUnusable_ = true; }
  bool isUnusable() const { return isUnusable_; }

  // In the order in which they were found.
  const std::vector<Finding>& kept() const { return kept_; }
  uint64_t count() const { return count_; }
  uint64_t CountOf(Fault fault, std::string_view file) const;
  // By file.
  std::vector<FindingCount> Counts() const;

 private:
  size_t most_;
  bool isUnusable_ = false;
  uint64_t count_ = 0;
  std::vector<Finding> kept_;
  std::map<std::pair<std::string_view, Fault>, uint64_t> counts_;
};

}  // namespace vela::inspector
