#pragma once

#include <span>
#include <string>
#include <string_view>

namespace aq::fuzz {

/// What the fuzzer drives with made bytes. A fault ends the process, and the fuzzer keeps the
/// bytes.
struct Target {
  std::string name;
  void (*run)(const Target& target, std::string_view input);
};

[[nodiscard]] std::span<const Target> targets();

/// Runs one input of the target of that name.
void run(std::string_view name, std::string_view input);

/// Ends the process unless `holds`.
void expect(bool holds, const char* what);

// The targets that are no readers.
void roundTrip(const Target& target, std::string_view input);
void numbers(const Target& target, std::string_view input);
void model(const Target& target, std::string_view input);

}  // namespace aq::fuzz
