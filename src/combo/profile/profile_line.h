#pragma once
// Commands that edit several fields of a profile at a time. One description serves the command, which takes the values
// in their order, and the line of the running configuration, which gives them back.

#include "combo/profile/profile_item.h"

// What an edit makes of a value whose field's condition does not hold.
enum class Otherwise : u8 { zero, initial, kept };

struct LineValue {
  const char* word;  // ahead of it in the line
  const ProfileField* field;
  std::span<const Word> words = {};  // what is typed and printed for it, in any case; none: a number
  const char* refusal = nullptr;     // of what the field may not hold; null: left to the check of the profile
  const char* missing = "unknown command";
  const char* surplus = "unknown command";  // it was typed while its condition does not hold
  Otherwise otherwise = Otherwise::zero;
};

struct ProfileLine {
  const char* head;
  std::span<const LineValue> values;
  std::span<const FieldOrder> orders = {};  // of what was typed
  const char* orderRefusal = nullptr;
  bool always = false;   // printed with the defaults, too
  const char* end = "";  // ahead of the line end
};

// The row of the field at a place of the item.
consteval const ProfileField* rowAt(ProfileFields fields, u16 at) {
  for (const ProfileField& field : fields)
    if (field.at == at) return &field;
  throw "there is no such field";
}

double typedNumber(const char* text);  // 0 for what is none
// The number with its decimals, cut behind them and held at the limits of i32; the least one for a NaN.
i32 scaled(double number, u8 decimals);
// The number lies within a range that is told in the units of the field's last decimal.
bool within(const ProfileField& field, const ValueRange& range, double number);

// Takes the arguments into an item of zeros. 0, or -1 behind a complaint.
int readLine(const ProfileLine& line, Vty* vty, int argc, char** argv, void* values);
// Takes the values of a line over into an item if a number differs, or with `force`; true if it did.
bool applyLine(const ProfileLine& line, void* item, const void* values, bool force);
void printLine(const ProfileLine& line, Vty* vty, const void* item);
