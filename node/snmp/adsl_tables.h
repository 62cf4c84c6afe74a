#pragma once
// ADSL lines (RFC 2662), as far as the node knows what the objects ask for: what it does not know is absent.

#include "port_tables.h"
#include "profile_kinds.h"

namespace msand {

// The entry of a table of the MIB.
Oid adslEntry(oid table);
inline constexpr oid kLineTable = 1;
enum AdslLineColumn : oid { kLineType = 2, kLineProfile = 4, kLineAlarmProfile = 5 };

class AdslLineTable : public StandardTable {
 public:
  explicit AdslLineTable(const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override { return portBehind(index, isAdslLine); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;

  const StandardFunctions& functions_;
};

}  // namespace msand
