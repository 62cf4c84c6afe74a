#pragma once
// The table of a kind of profile. Profiles are known to managers by name, to the node by number; the default one is
// DEFVAL to managers.

#include <chrono>
#include <map>
#include <string>

#include "profile_kinds.h"
#include "standard_table.h"

namespace msand {

class ProfileTable : public StandardTable {
 public:
  ProfileTable(const ProfileKind& kind, const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override;
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;
  void changed() override { until_ = {}; }
  void refresh();

  const ProfileKind& kind_;
  const StandardFunctions& functions_;
  std::map<Oid, u16> ids_;                       // by name
  std::chrono::steady_clock::time_point until_;  // they are good
};

}  // namespace msand
