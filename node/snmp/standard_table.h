#pragma once
// A table of a standard MIB that managers read. All of it belongs to the agent's thread.

#include <optional>
#include <string_view>
#include <vector>

#include "library.h"
#include "platform/types.h"

namespace msand {

using Oid = std::vector<oid>;

class StandardTable {
 public:
  // `entry` is the name of the table's entry, `columns` those that are served, ascending.
  StandardTable(const char* name, const Oid& entry, Oid columns);
  virtual ~StandardTable();
  StandardTable(const StandardTable&) = delete;
  StandardTable& operator=(const StandardTable&) = delete;

 protected:
  // The index of the first row behind one; of the first row for none.
  virtual std::optional<Oid> behind(const Oid& index) = 0;
  // Gives a column of a row. False: there is no such row, or nothing to tell.
  virtual bool give(oid column, const Oid& index, netsnmp_variable_list& to) = 0;

  static bool giveNumber(netsnmp_variable_list& to, u32 number, u8 type = ASN_INTEGER);
  static bool giveText(netsnmp_variable_list& to, std::string_view text);

 private:
  static int handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                    netsnmp_request_info* requests);
  void get(netsnmp_request_info* request);
  void getNext(netsnmp_request_info* request);
  bool giveAs(oid column, const Oid& index, netsnmp_variable_list& to);

  const Oid entry_;
  const Oid columns_;
  netsnmp_handler_registration* registration_ = nullptr;
};

}  // namespace msand
