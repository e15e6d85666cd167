#pragma once

#include <aq/aq.h>

#include <iostream>

/// True if a file was read or written; otherwise prints the reason on standard error.
inline bool isGood(aq::AQ_DataMessage result, const aq::FileClass& file) {
  if (result == aq::AQ_DATA_OK) return true;
  std::cerr << file.lastFailure()->message() << '\n';
  return false;
}
