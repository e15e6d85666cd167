#include <aq/core/date_text.h>
#include <aq/core/variant.h>
#include <gtest/gtest.h>

#include "tests/support/errors.h"

namespace aq {
namespace {

TEST(Variant, KeepsTheTypeItWasGiven) {
  using Type = Variant::Type;
  const std::pair<Variant, Type> rows[] = {{{}, Type::Empty},
                                           {std::int16_t{3}, Type::Int16},
                                           {3, Type::Int32},
                                           {3.0F, Type::Single},
                                           {3.0, Type::Double},
                                           {true, Type::Boolean},
                                           {"3", Type::String},
                                           {Variant::date(3), Type::Date},
                                           {std::make_shared<int>(3), Type::Object},
                                           {std::int64_t{1} << 40, Type::Double},
                                           {3U, Type::Int32},
                                           {std::uint8_t{3}, Type::Int16}};
  for (const auto& [variant, type] : rows) EXPECT_EQ(variant.type(), type);
}

TEST(Variant, Converts) {
  EXPECT_EQ(Variant(" 65.3 ").toDouble(), 65.3);
  EXPECT_EQ(Variant(2.5).toInt16() + Variant(" 7").toInt16() + Variant("8").toInt32(), 17);
  EXPECT_EQ(Variant(-32768.4).toInt16(), -32768);
  EXPECT_EQ(Variant(true).toInt32(), 1);
  EXPECT_TRUE(Variant("True").toBoolean());
  EXPECT_FALSE(Variant(" 0 ").toBoolean());
  EXPECT_EQ(Variant(0.1F).toString(), "0.1");
  EXPECT_EQ(Variant(true).toString() + Variant(std::int16_t{-3}).toString() +
                Variant(70000).toString() + Variant(2.5).toString() + Variant(" x").toString(),
            "True-3700002.5 x");
  EXPECT_EQ(Variant::date(3.5).toDouble(), 3.5);
  EXPECT_EQ(Variant::date(dateFrom("03/15/2004") + 0.5).toString(), "03/15/2004 12:00:00");
  const auto object = std::make_shared<int>(3);
  EXPECT_EQ(Variant(object).toObject<int>(), object);
  EXPECT_EQ(Variant(object), Variant(object));
}

TEST(Variant, RefusesWhatDoesNotConvert) {
  for (const Variant& none : {Variant(), Variant("x"), Variant(nullptr)}) {
    EXPECT_ERROR(none.toDouble(), TypeMismatch);
    EXPECT_ERROR(none.toBoolean(), TypeMismatch);
  }
  EXPECT_ERROR(Variant().toString(), TypeMismatch);
  EXPECT_ERROR(Variant(nullptr).toString(), TypeMismatch);
  EXPECT_ERROR(Variant("2.5").toInt32(), TypeMismatch);
  EXPECT_ERROR(Variant(32767.5).toInt16(), Overflow);
  EXPECT_ERROR(Variant(1e39).toSingle(), Overflow);
  EXPECT_ERROR(Variant(3.0).toObject<int>(), ObjectNotSet);
  EXPECT_ERROR(Variant(std::make_shared<int>(3)).toObject<double>(), ObjectNotSet);
  EXPECT_ERROR(Variant(nullptr).toObject<int>(), ObjectNotSet);
}

}  // namespace
}  // namespace aq
