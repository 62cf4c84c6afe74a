#include "adsl_tables.h"

namespace msand {

Oid adslEntry(oid table) { return {1, 3, 6, 1, 2, 1, 10, 94, 1, 1, table, 1}; }

AdslLineTable::AdslLineTable(const StandardFunctions& functions)
    : StandardTable("adslLineTable", adslEntry(kLineTable), {kLineType, kLineProfile, kLineAlarmProfile},
                    Access::write),
      functions_(functions) {}

bool AdslLineTable::give(oid column, const Oid& index, netsnmp_variable_list& to) {
  const auto port = portOf(index, isAdslLine);
  if (!port) return false;
  const ProfileKind& kind = column == kLineAlarmProfile ? kAlarmProfiles : kLineProfiles;
  const int id = kind.attached(functions_, port->slot, port->port);
  if (id < 0) return false;
  if (column != kLineType && id == 0) return giveText(to, kDefaultProfile);
  ProfileView view;
  if (kind.read(functions_, static_cast<u16>(id), view) != 0) return false;
  return column == kLineType ? giveNumber(to, view.line.lineType) : giveText(to, nameOf(view));
}

}  // namespace msand
