#pragma once
// ADSL lines and their profiles (RFC 2662), as far as the node knows what the objects ask for: what it does not know is
// absent. Profiles are known to managers by name, to the node by number; the default one is DEFVAL to managers.

#include <chrono>
#include <map>
#include <string>

#include "port_tables.h"

namespace msand {

// The names of profiles. Of two profiles with one name the lower number has it.
class ProfileNames {
 public:
  // `next` tells the first profile behind an id.
  using Next = std::optional<std::pair<u16, std::string>>(const StandardFunctions& functions, u16 id);
  ProfileNames(const StandardFunctions& functions, Next* next) : functions_(functions), next_(next) {}

  std::optional<Oid> behind(const Oid& index);
  std::optional<u16> idOf(const Oid& index);

 private:
  void refresh();

  const StandardFunctions& functions_;
  Next* const next_;
  std::map<Oid, u16> ids_;
  std::chrono::steady_clock::time_point until_;  // they are good
};

class AdslLineTable : public StandardTable {
 public:
  explicit AdslLineTable(const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override { return portBehind(index, isAdslLine); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;

  const StandardFunctions& functions_;
};

class AdslProfileTable : public StandardTable {
 public:
  explicit AdslProfileTable(const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override { return names_.behind(index); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;

  const StandardFunctions& functions_;
  ProfileNames names_;
};

class AdslAlarmProfileTable : public StandardTable {
 public:
  explicit AdslAlarmProfileTable(const StandardFunctions& functions);

 private:
  std::optional<Oid> behind(const Oid& index) override { return names_.behind(index); }
  bool give(oid column, const Oid& index, netsnmp_variable_list& to) override;

  const StandardFunctions& functions_;
  ProfileNames names_;
};

}  // namespace msand
