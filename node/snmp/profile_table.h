#pragma once
// The table of a kind of profile. Profiles are known to managers by name, to the node by number; the default one is
// DEFVAL to managers.

#include <chrono>
#include <map>
#include <string>

#include "facts.h"
#include "profile_kinds.h"
#include "standard_table.h"

namespace msand {

class ProfileTable : public StandardTable {
 public:
  ProfileTable(const ProfileKind& kind, const StandardFunctions& functions, Facts& facts);

 private:
  std::optional<Oid> behind(const Oid& index) override;
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;
  bool isLearned(oid column) const override;
  void changed() override;
  void refresh();
  bool giveRateMode(u16 id, bool down, netsnmp_variable_list& to);

  const ProfileKind& kind_;
  const StandardFunctions& functions_;
  Facts& facts_;
  std::map<Oid, u16> ids_;                       // by name
  std::chrono::steady_clock::time_point until_;  // they are good
};

}  // namespace msand
