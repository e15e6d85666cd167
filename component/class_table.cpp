#include "component/class_table.h"

#include <algorithm>
#include <stdexcept>
#include <typeindex>

#include "component/enumerator.h"
#include "component/table_of.h"

namespace aq::com {
namespace {

void index(ClassTable& table) {
  if (table.entries) {
    table.members.push_back({L"_NewEnum", DISPID_NEWENUM, {}, 0, [&table](const Call& call) {
                               call.result.punkVal = new Enumerator(table.entries(call.object));
                               call.result.vt = VT_UNKNOWN;
                             }});
  }
  for (const Member& member : table.members) {
    table.byName.emplace(lowerCase(member.name), &member);
    const auto place = static_cast<std::size_t>(member.id);
    if (member.id < 0 || member.id >= kFirstExtra) {
      table.byOtherId.emplace(member.id, &member);
      continue;
    }
    if (table.byId.size() <= place) table.byId.resize(place + 1);
    table.byId[place] = &member;
  }
}

struct AllTables {
  Tables tables;
  std::unordered_map<std::type_index, const ClassTable*> byType;
  std::vector<const ClassTable*> ofClasses;

  AllTables() {
    addCollections(tables);
    addModels(tables);
    addGeometry(tables);
    addNoise(tables);
    addHeaders(tables);
    addFiles(tables);
    for (auto& [type, table] : tables) {
      index(table);
      byType.emplace(*type, &table);
      ofClasses.push_back(&table);
    }
  }
};

/// Created on first use and never destroyed, since objects may outlive the DLL's cleanup.
const AllTables& all() {
  static const auto* const made = new AllTables;
  return *made;
}

}  // namespace

std::wstring lowerCase(std::wstring_view name) {
  std::wstring lower(name);
  for (wchar_t& letter : lower) {
    if (letter >= L'A' && letter <= L'Z') letter = static_cast<wchar_t>(letter - L'A' + L'a');
  }
  return lower;
}

const std::vector<const ClassTable*>& allTables() { return all().ofClasses; }

const ClassTable& tableOf(const std::type_info& type) {
  const auto found = all().byType.find(type);
  if (found == all().byType.end()) throw std::logic_error("a class without a table");
  return *found->second;
}

}  // namespace aq::com
