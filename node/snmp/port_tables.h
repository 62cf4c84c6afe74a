#pragma once
// The node's ports as interfaces (RFC 2863): those of DSL, Ethernet and POTS cards. An interface's index is slot *
// 65536
// + port.

#include "facts.h"
#include "standard_functions.h"
#include "standard_table.h"

namespace msand {

struct Port {
  u16 slot = 0;
  u16 port = 0;
  u16 type = 0;  // of the card catalogue
};
using PortFilter = bool (*)(u16 type);

inline constexpr u16 kPotsPort = 600;
bool isInterface(u16 type);
bool isAdslLine(u16 type);

// The port of an index, if its card has it and the filter takes its type.
std::optional<Port> portOf(const Oid& index, PortFilter filter);
// The index of the first port behind one.
std::optional<Oid> portBehind(const Oid& index, PortFilter filter);

const Oid& interfaceEntry();
enum InterfaceColumn : oid { kIndex = 1, kDescription = 2, kType = 3, kAdministration = 7, kOperation = 8 };
enum InterfaceStatus : u32 { kUp = 1, kDown = 2, kUnknown = 4, kNotPresent = 6 };

class InterfaceTable : public StandardTable {
 public:
  InterfaceTable(const StandardFunctions& functions, Facts& facts);
  ~InterfaceTable() override;

 private:
  static int giveCount(netsnmp_mib_handler*, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                       netsnmp_request_info* requests);
  std::optional<Oid> behind(const Oid& index) override { return portBehind(index, isInterface); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;
  bool isLearned(oid column) const override { return column == kOperation; }
  void changed() override { facts_.forget(Fact::lineUp); }
  bool giveAdministration(const Port& port, netsnmp_variable_list& to) const;
  bool giveOperation(const Port& port, netsnmp_variable_list& to);

  const StandardFunctions& functions_;
  Facts& facts_;
  netsnmp_handler_registration* count_ = nullptr;
};

class InterfaceNames : public StandardTable {
 public:
  InterfaceNames();

 private:
  std::optional<Oid> behind(const Oid& index) override { return portBehind(index, isInterface); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;
};

}  // namespace msand
