#pragma once

#include <aq/aq.h>

#include <iostream>

/// True when a file was read or written; else says on standard error what is wrong with it.
inline bool isGood(aq::AQ_DataMessage result, const aq::FileClass& file) {
  if (result == aq::AQ_DATA_OK) return true;
  std::cerr << file.lastFailure()->message() << '\n';
  return false;
}
