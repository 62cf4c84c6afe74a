#pragma once
// What the cards tell of ADSL lines (RFC 2662): the physical tables and the channel tables, of both ends. A channel has
// the index of its line.

#include <span>

#include "facts.h"
#include "port_tables.h"

namespace msand {

// What a column tells of a card's answer.
struct LineColumn;

class AdslStateTable : public StandardTable {
 public:
  AdslStateTable(const char* name, oid table, std::span<const LineColumn> columns, Facts& facts,
                 const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override { return portBehind(index, isAdslLine); }
  bool isLearned(oid) const override { return true; }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;
  bool isFast(const Port& port) const;

  const std::span<const LineColumn> told_;
  Facts& facts_;
  const StandardFunctions& functions_;
};

struct AdslStateTables {
  AdslStateTables(Facts& facts, const StandardFunctions& functions);
  AdslStateTable atucPhysical, aturPhysical, atucChannel, aturChannel;
};

}  // namespace msand
