// The tables of ports as the commands that fill them: a row becomes profile 0, and is attached.

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/msan_init.h"
#include "common/words.h"
#include "data/vlan/port_vlan.h"
#include "platform/flow_store.h"
#include "platform/log.h"
#include "platform/objects.h"

namespace {
// A line that is put together; what does not fit is cut off, and the line has failed.
class Line {
 public:
  void add(const char* format, ...) __attribute__((format(printf, 2, 3))) {
    std::va_list arguments;
    va_start(arguments, format);
    const int length = std::vsnprintf(text_ + length_, sizeof text_ - length_, format, arguments);
    va_end(arguments);
    failed_ = failed_ || length < 0 || static_cast<u32>(length) >= sizeof text_ - length_;
    if (!failed_) length_ += static_cast<u32>(length);
  }
  void fail() { failed_ = true; }

  bool failed() const { return failed_; }
  const char* text() const { return text_; }

 private:
  char text_[256] = {};
  u32 length_ = 0;
  bool failed_ = false;
};
}  // namespace

// A value behind its keyword; `none` stands for one that is all or nothing, where the command knows such a word.
static void addValue(Line& line, const char* keyword, u16 value, const char* none = nullptr) {
  if (value == kNoTag && none != nullptr) {
    line.add(" %s %s", keyword, none);
  } else {
    line.add(" %s %d", keyword, value);
  }
}

// "null" is rule 0, and one that is no more.
static void addRule(Line& line, const char* keyword, i16 id) {
  char name[kVlanName + 1] = "null";
  u8 length = kVlanName;
  if (id != 0 && flowRuleIsPrfExist(id) == 1 && flowRuleGetNameById(name, &length, id) < 0) line.fail();
  line.add(" %s %.20s", keyword, name);
}

// The line of a service; empty for one of a type or mode that no command makes.
static void addService(Line& line, const VlanService& s) {
  const char* type = textOf(kServiceTypeWords, s.serviceType, nullptr);
  const char* mode = textOf(kVlanModeWords, s.vlanMode, nullptr);
  if (type == nullptr || mode == nullptr) return;
  const bool translates = s.vlanMode == kTranslation;
  const bool hasQinq = s.qinqEnable == 1;
  const bool abridged = translates && hasQinq;  // the longest line there is
  const bool choices = s.serviceType == kMulticast || s.vlanMode != kTag;
  line.add("add %s %s %s", type, mode, abridged ? "cv" : "cvlan");
  addValue(line, "tpid", s.cvlanTpid);
  addValue(line, "vid", s.cvlanVid, choices && !translates ? "all" : nullptr);
  addValue(line, "cos", s.cvlanCos, choices ? "null" : nullptr);
  if (translates) {
    line.add(" %s", abridged ? "outv" : "outvlan");
    addValue(line, "tpid", s.transTpid);
    addValue(line, "vid", s.transVid);
    addValue(line, "cos", s.transCos, "null");
  }
  addRule(line, abridged ? "r" : "rule", s.cvlanRuleId);
  if (!hasQinq) return;
  line.add(" %s", abridged ? "q" : "qinq");
  addValue(line, "tpid", s.qinqTpid);
  addValue(line, "vid", s.qinqVid);
  addValue(line, "cos", s.qinqCos);
  addRule(line, abridged ? "r" : "rule", static_cast<i16>(s.qinqRuleId));
}

// The row as commands that fill profile 0, which begins empty here as it will on replay. 0 or -1.
static int showrun_port_vlan_per_item(Vty* vty, const VlanItem& row) {
  gCurrentVlanPrfId = 0;
  init_port_vlan_profile(0);
  if (row.tlsEnable == 1) {
    vty_out(vty, "set tls enable tpid %d vid %d cos %d copy-inner-cos %s\r\n", row.tlsTpid, row.tlsVid, row.tlsCos,
            row.tlsCosCopy == 1 ? "enable" : "disable");
  }
  for (const VlanService& service : row.services) {
    if (!isInUse(service)) continue;
    Line line;
    addService(line, service);
    if (line.failed()) return -1;
    if (*line.text() != '\0') vty_out(vty, "%s\r\n", line.text());
  }
  return 0;
}

static bool port_vlan_item_same_as_def(const VlanItem& row) { return row.tlsEnable == 0 && row.serviceNum == 0; }

// A port without rows prints nothing.
void showrunPortVlan(Vty* vty, const PortVlanRecord* record) {
  const u16 slot = record->object.addr[1];
  const u16 port = record->object.addr[2];
  u16 rows = kPvcRows;
  bool multiPvc = false;
  SnmpErrInfo err;
  if (check_pvcnum(slot, port, &rows, &multiPvc, &err) != 0) return;
  for (u16 i = 0; i < rows; ++i) {
    const VlanItem& row = record->table.rows[i];
    if (port_vlan_item_same_as_def(row)) continue;
    if (showrun_port_vlan_per_item(vty, row) != 0) {
      ulogPrintf(gModuleId_Msan, kLogDebug, "F(%s)L(%d):  showrun_port_vlan_per_item slot %d port %d item %d fail!\r\n",
                 "showrun_vlan_table_item", __LINE__, slot, port, i);
    } else if (multiPvc) {
      vty_out(vty, "attach vlan profile defVlanPrf interface %d/%d pvc %d \r\n", slot, port, i);
    } else {
      vty_out(vty, "attach vlan profile defVlanPrf interface %d/%d \r\n", slot, port);
    }
  }
}
