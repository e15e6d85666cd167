#pragma once

#include <aq/core/error.h>
#include <gtest/gtest.h>

/// Expects `statement` to throw an `aq::Error` with the code `kind`.
#define EXPECT_ERROR(statement, kind)                             \
  try {                                                           \
    static_cast<void>(statement);                                 \
    ADD_FAILURE() << #statement " does not throw";                \
  } catch (const aq::Error& error) {                              \
    EXPECT_EQ(error.code(), aq::ErrorCode::kind) << error.what(); \
  }
