#include "combo/vdsl/vdsl_points.h"

#include <algorithm>

#include "platform/command_line.h"

// Puts a point at its place. A new one is counted; whether there is a hole ahead of it is for the check to find.
static void setPoint(const PointCommand& command, u8* item, i32 index, i32 tone, i32 value) {
  const ProfileTable& table = *command.count->table;
  u8* entry = item + table.at + (index - 1) * table.entry;
  if (entry[table.valid] != 1) {
    setField(*command.count, item, std::min<i32>(fieldOf(*command.count, item) + 1, table.most));
  }
  entry[table.valid] = 1;
  setField(table.fields[0], entry, tone);
  setField(table.fields[1], entry, value);
}

int editPoint(const ProfileKind& kind, const PointCommand& command, Vty* vty, int argc, char** argv) {
  if (argc != 3) return complain(vty, "unknown command");
  const ProfileTable& table = *command.count->table;
  const i32 index = bep_atoiEx(argv[0]);
  if (index < 1 || index > table.most) return complain(vty, "index para error!");
  const i32 tone = bep_atoiEx(argv[1]);
  if (!allows(table.fields[0], tone)) return complain(vty, "tone para error!");
  const ProfileField& field = table.fields[1];
  const double value = field.decimals != 0 ? typedNumber(argv[2]) : bep_atoiEx(argv[2]);
  if (command.refusal != nullptr && !within(field, command.typed, value)) return complain(vty, command.refusal);
  SnmpErrInfo err;
  const auto put = [&](u8* item) {
    setPoint(command, item, index, tone, scaled(value, field.decimals));
    return true;
  };
  return finishEdit(kind, vty, editSelected(kind, &err, put), err);
}

void printPoints(const PointCommand& command, Vty* vty, const void* item) {
  const ProfileTable& table = *command.count->table;
  const ProfileField& field = table.fields[1];
  const i32 count = std::min<i32>(fieldOf(*command.count, item), table.most);
  for (i32 i = 0; i < count; ++i) {
    const u8* entry = static_cast<const u8*>(item) + table.at + i * table.entry;
    vty_out(vty, "%s index %d tone %d %s %.*f%s", command.head, i + 1, fieldOf(table.fields[0], entry), command.word,
            field.decimals, unscaled(field, fieldOf(field, entry)), "\r\n");
  }
}
