#pragma once
// What the messages about lines hold of a line.

#include "messages/answer.h"
#include "port.h"

namespace cards {

bool isAboutLines(u16 id);

// A port at a time, as a message needs it.
struct LineState {
  u16 slot = 0, number = 0;
  const Port* port = nullptr;
  State state = State::config;
  line::Order order;                          // of the line
  const line::Summary* summary = nullptr;     // of a line that is up, or was tested from both ends
  std::shared_ptr<const line::Trained> line;  // its curves, where the message has some
  std::vector<u32> rates;                     // kbit/s by mode, up and down in turn, where the message has them
  Time now;
  bool up() const { return state == State::showtime; }
};
LineState look(u16 slot, u16 number, Port& port, Time now, Trainer& trainer, u16 id);

// The lines in the order of the answer.
class Answers : public messages::Knowledge {
 public:
  Answers(u16 id, std::vector<LineState> lines);
  std::optional<messages::Value> find(const messages::Field& field, std::span<const i64> place) const override;

 private:
  std::vector<LineState> lines_;
  struct Row;
  std::span<const Row> rows_;
  static std::span<const Row> rowsOf(u16 id);
};

}  // namespace cards
