#include "aq/sdf/layout.h"

#include <algorithm>

namespace aq::sdf {
namespace {

template <std::size_t n>
constexpr AnyLayout any(const Layout<n>& layout) {
  return {layout.name, layout.type, layout.fields};
}

constexpr AnyLayout kLayouts[] = {any(kFile),
                                  any(kMeasurement),
                                  any(kData),
                                  any(kVector),
                                  any(kChannel),
                                  any(kScans),
                                  {"SDF_XDATA_HDR", RecordType::X, {}},
                                  {"SDF_YDATA_HDR", RecordType::Y, {}},
                                  any(kManyScans),
                                  any(kScanVariable),
                                  any(kComment),
                                  {"SDF_UNIQUE", RecordType::Unique, {}}};

}  // namespace

const AnyLayout& layoutOf(RecordType type) {
  return *std::find_if(std::begin(kLayouts), std::end(kLayouts) - 1,
                       [&](const AnyLayout& one) { return one.type == type; });
}

const AnyLayout* layoutNamed(std::string_view name) {
  const auto* const found = std::find_if(std::begin(kLayouts), std::end(kLayouts),
                                         [&](const AnyLayout& one) { return one.name == name; });
  return found == std::end(kLayouts) ? nullptr : found;
}

std::span<const Field> partsOf(const Field& field) {
  if (field.type == Type::Unit) return kUnit.fields;
  if (field.type == Type::Window) return kWindow.fields;
  return {};
}

}  // namespace aq::sdf
