#include <aq/core/enumerations.h>
#include <aq/core/variant.h>
#include <aq/text/date_text.h>
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
  EXPECT_EQ(Variant(2.5).toInt16(), 2);
  EXPECT_EQ(Variant(" 7").toInt16(), 7);
  EXPECT_EQ(Variant("8").toInt32(), 8);
  EXPECT_EQ(Variant(-32768.4).toInt16(), -32768);
  EXPECT_EQ(Variant(true).toInt32(), 1);
  EXPECT_TRUE(Variant("True").toBoolean());
  EXPECT_FALSE(Variant(" 0 ").toBoolean());
  EXPECT_EQ(Variant(0.1F).toString(), "0.1");
  EXPECT_EQ(Variant(true).toString(), "True");
  EXPECT_EQ(Variant(std::int16_t{-3}).toString(), "-3");
  EXPECT_EQ(Variant(70000).toString(), "70000");
  EXPECT_EQ(Variant(2.5).toString(), "2.5");
  EXPECT_EQ(Variant(" x").toString(), " x");
  EXPECT_EQ(Variant::date(3.5).toDouble(), 3.5);
  EXPECT_EQ(Variant::date(dateFrom("03/15/2004") + 45296 / 86400.0).toString(),
            "03/15/2004 12:34:56");
  const auto object = std::make_shared<int>(3);
  EXPECT_EQ(Variant(object).toObject<int>(), object);
  EXPECT_EQ(Variant(object), Variant(object));
}

template <class Value>
void expectFrom(int first, std::initializer_list<Value> values) {
  for (const Value value : values) EXPECT_EQ(value, first++);
}

TEST(Enumerations, HaveTheNumbersThatHostsStore) {
  expectFrom(0, {AQ_LINEAR, AQ_TRUSLO, AQ_4S100, AQ_4S95, AQ_CONTEXPO});
  expectFrom(0, {AQ_START, AQ_MIDPT, AQ_END, AQ_ICAOSLO, AQ_OLDSLO});
  expectFrom(0,
             {AQ_START_REF, AQ_OVERHEAD, AQ_AMAX, AQ_PMAX, AQ_TMAX, AQ_OAMAX, AQ_HACK, AQ_OTHER});
  expectFrom(0,
             {NOT_MASKED, MASKED_BY_MASK_CRITERION, MASKED_BY_PRE_DETECT, MASKED_BY_POST_DETECT});
  expectFrom(0, {NOT_ADJUSTED, ENERGY_SUBTRACTION, FREQUENCY_EXTRAPOLATION, TIME_EXTRAPOLATION,
                 AVG_OF_ADJACENT, CORRECTIONS_APPLIED, ADJ_TO_REFERENCE});
  expectFrom(
      1, {AQ_METRIC_AWT, AQ_METRIC_CWT, AQ_METRIC_DWT, AQ_METRIC_OA, AQ_METRIC_PNL, AQ_METRIC_PNLT,
          AQ_METRIC_TONECOR, AQ_METRIC_TONEBND, AQ_METRIC_LGB, AQ_METRIC_INTEG});
  expectFrom(1, {AQ_INTEG_MAX, AQ_INTEG_FST});
  EXPECT_EQ(AQ_INTEG_LST, 4);
  EXPECT_EQ(AQ_INTEG_2ND, 8);
  EXPECT_EQ(AQ_NA, 99);
  EXPECT_EQ(AQ_INVALID_LEVEL, 9999);
  EXPECT_EQ(AQ_DATA_FILE_ERROR, 2);
  expectFrom(0, {AQ_TIME_TOD, AQ_TIME_REF});
}

TEST(Variant, RejectsWhatDoesNotConvert) {
  for (const Variant& none : {Variant(), Variant("x"), Variant(nullptr)}) {
    EXPECT_ERROR(none.toDouble(), TypeMismatch);
    EXPECT_ERROR(none.toBoolean(), TypeMismatch);
  }
  EXPECT_ERROR(Variant().toString(), TypeMismatch);
  try {
    static_cast<void>(Variant().toDouble());
  } catch (const Error& error) {
    EXPECT_STREQ(error.what(), "expected a number, found an empty value");
  }
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
