#pragma once
// A table of a standard MIB. All of it belongs to the thread that leads. What a SET does is done ahead of the library's
// treatment of it (module_road.h); the table then tells the library what has come of it.

#include <optional>
#include <string_view>
#include <vector>

#include "library.h"
#include "platform/types.h"

namespace msand {

using Oid = std::vector<oid>;

enum class Access { read, write };

class Facts;
class StandardSet;

class StandardTable {
 public:
  // `entry` is the name of the table's entry, `columns` those that are served, ascending.
  StandardTable(const char* name, const Oid& entry, Oid columns, Access access = Access::read);
  virtual ~StandardTable();
  StandardTable(const StandardTable&) = delete;
  StandardTable& operator=(const StandardTable&) = delete;

  // The SET that the library treats next has been done; null: none has.
  static void prepare(const StandardSet* done) { done_ = done; }

  // Nothing is told, but has the facts note what is needed: to give an object,
  void note(const netsnmp_variable_list& variable, Facts& facts);
  // or the one behind a name, which the name becomes. False: none of this table.
  bool noteNext(Oid& name, Facts& facts);

 protected:
  // The index of the first row behind one; of the first row for none.
  virtual std::optional<Oid> behind(const Oid& index) = 0;
  // Gives a column of a row. False: there is no such row, or nothing to tell.
  virtual bool give(oid column, const Oid& index, netsnmp_variable_list& to) = 0;
  // It gives this column by facts.
  virtual bool isLearned(oid) const { return false; }
  // A SET has changed something.
  virtual void changed() {}

  static bool giveNumber(netsnmp_variable_list& to, u32 number, u8 type = ASN_INTEGER);
  static bool giveText(netsnmp_variable_list& to, std::string_view text);

 private:
  static int handle(netsnmp_mib_handler* handler, netsnmp_handler_registration*, netsnmp_agent_request_info* info,
                    netsnmp_request_info* requests);
  void get(netsnmp_request_info* request);
  void getNext(netsnmp_request_info* request);
  bool giveNext(const Oid& from, bool inclusive, netsnmp_variable_list& to);
  bool giveAs(oid column, const Oid& index, netsnmp_variable_list& to);

  static const StandardSet* done_;
  static Facts* noting_;

  const Oid entry_;
  const Oid columns_;
  netsnmp_handler_registration* registration_ = nullptr;
};

}  // namespace msand
