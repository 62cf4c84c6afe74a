#include "port.h"

#include <algorithm>

namespace cards {

using std::chrono::seconds;

std::shared_ptr<const line::Trained> Trainer::train(const line::Plant& plant, const line::Order& order) {
  const auto found =
      std::ranges::find_if(kept_, [&](const Entry& one) { return one.plant == plant && one.order == order; });
  Entry entry;
  if (found != kept_.end()) {
    entry = std::move(*found);
    kept_.erase(found);
  } else {
    entry = {plant, order, std::make_shared<const line::Trained>(line::train(plant, order))};
    if (kept_.size() == kKept) kept_.pop_front();
  }
  kept_.push_back(entry);
  return entry.line;
}

void Port::start(bool vdsl) {
  Port fresh;
  fresh.site_ = site_;
  fresh.profile_ = Profile(vdsl);
  *this = std::move(fresh);
}

std::shared_ptr<const line::Trained> Port::line(Trainer& trainer) {
  return trainer.train(site_.plant, profile_.order());
}

const line::Summary& Port::summary(Trainer& trainer) {
  if (!summary_) summary_ = *line(trainer);
  return *summary_;
}

State Port::testState(Time now) const {
  constexpr seconds kInit{1}, kDone{3};
  const auto spent = now - tested_;
  if (test_ == Test::none) return State::config;
  if (test_ == Test::selt) return spent < kDone ? State::seltRun : State::seltDone;
  if (spent < kInit) return State::deltInit;
  if (spent < kDone) return State::deltFetch;
  return site_.far == FarEnd::present ? State::deltDone : State::deltFailed;
}

// A line that can't reach what the profile asks for tries again and again.
State Port::state(Time now, Trainer& trainer) {
  if (!enabled_) return testState(now);
  if (site_.far != FarEnd::present) return State::init;
  const auto spent = now - trains_;
  if (spent >= kTrained && summary(trainer).feasible) return State::showtime;
  return spent % kTrained < kHandshake ? State::init : State::training;
}

void Port::retrain(Reason reason, Time now, Trainer& trainer) {
  if (state(now, trainer) == State::showtime) {
    drops_.push_front({now, reason});
    if (drops_.size() > kDrops) drops_.pop_back();
  }
  trains_ = now;
}

void Port::setSite(const Site& site, Time now, Trainer& trainer) {
  if (site == site_) return;
  retrain(site.far == FarEnd::present ? Reason::noMargin : Reason::modemLost, now, trainer);
  site_ = site;
  summary_.reset();
}

void Port::setEnabled(bool enabled, Time now, Trainer& trainer) {
  if (enabled == enabled_) return;
  retrain(Reason::stopped, now, trainer);
  enabled_ = enabled;
  test_ = Test::none;
}

void Port::setProfile(const Profile& profile, Time now, Trainer& trainer) {
  if (profile.order() == profile_.order()) {
    profile_ = profile;
    return;
  }
  retrain(Reason::reset, now, trainer);
  profile_ = profile;
  summary_.reset();
}

void Port::runTest(bool delt, bool start, Time now) {
  test_ = !start ? Test::none : delt ? Test::delt : Test::selt;
  tested_ = now;
}

}  // namespace cards
