#pragma once
// A SET of objects of standard MIBs. It is checked as a whole before anything is done; then it is done in an order in
// which what is made is there for those who use it, and what goes is not used any more; and if the module refuses a
// part of it, what was done is taken back.

#include <functional>
#include <map>
#include <string>
#include <utility>
#include <vector>

#include "port_tables.h"
#include "profile_kinds.h"

namespace msand {

class StandardSet {
 public:
  // A request that sets such an object.
  static bool concerns(const netsnmp_pdu& pdu);
  // The messages of the module that one may send.
  static constexpr u16 kMessages[] = {34661, 34662, 34668, 34669, 2840};

  StandardSet(const StandardFunctions& functions, const netsnmp_pdu& pdu);
  StandardSet(const StandardSet&) = delete;
  StandardSet& operator=(const StandardSet&) = delete;

  // Checks and does it. Once, on any thread, under the request gate.
  void perform();
  // It can't be done now.
  void refuse() { fail(variables_.front().number, SNMP_ERR_RESOURCEUNAVAILABLE); }

  // What has come of a variable, counted from 1.
  int errorOf(u32 variable) const { return variable == failed_ ? error_ : SNMP_ERR_NOERROR; }

 private:
  struct Variable {
    u32 number = 0;  // in the request, from 1
    Oid name;
    u8 type = 0;
    i64 value = 0;
    std::string text;
  };
  struct Cell {
    u32 variable = 0;
    const ProfileColumn* column = nullptr;
    u32 number = 0;  // as the node has it
  };
  struct Row {
    u32 variable = 0;  // the first one
    std::vector<Cell> cells;
    u32 status = 0;  // 0: not set
    u32 statusVariable = 0;
    const StoredProfile* before = nullptr;
    std::vector<u8> item;  // what is to be stored
  };
  struct Rows {
    const ProfileKind* kind = nullptr;
    std::map<std::string, Row, std::less<>> rows;  // by name
    bool used = false;                             // by a row or a port
    StoredProfiles stored;
  };
  struct Attachment {
    u32 variable = 0;
    Rows* rows = nullptr;
    Port port;
    std::string name;
    u16 before = 0;
  };
  struct Enable {
    u32 variable = 0;
    Port port;
    u8 after = 0, before = 0;
  };

  // All of them: false when it has failed.
  bool fail(u32 variable, int error);
  bool read(const Variable& variable);
  bool readEnable(const Variable& variable, oid column, const Oid& index);
  bool readAttachment(const Variable& variable, oid column, const Oid& index);
  bool readCell(const Variable& variable, Rows& rows, oid column, const Oid& index);
  bool readNumber(const Variable& variable, const ProfileColumn& column, u32& number);

  bool check();
  bool checkRow(Rows& rows, const std::string& name, Row& row);
  bool checkStatus(const Rows& rows, const std::string& name, Row& row);
  bool fillItem(const Rows& rows, const std::string& name, Row& row);
  bool checkBounds(const ProfileKind& kind, const Row& row);
  bool checkAttachment(Attachment& one);
  bool checkUnused(const Rows& rows, const Row& row);

  bool perform(Rows& rows);
  bool perform(const Attachment& one);
  bool performEnables();
  bool destroy(const Rows& rows);
  void takeBack();

  const StandardFunctions& functions_;
  std::vector<Variable> variables_;  // those of standard tables
  bool mixed_ = false;               // there are others

  Rows lines_, alarms_;
  std::vector<Attachment> attachments_;
  std::vector<Enable> enables_;
  std::vector<std::function<bool()>> undo_;

  u32 failed_ = 0;  // the variable
  int error_ = SNMP_ERR_NOERROR;
};

}  // namespace msand
