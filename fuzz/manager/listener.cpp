// SPDX-License-Identifier: Apache-2.0
#include "manager/driver.h"
#include "reelhost/host.h"

namespace reeldb_fuzz {

Listener::Listener(Driver& driver, int number, const ModelClient& as)
    : ReelDbClient(as.interest.c_str()), driver_(driver), number_(number), as_(as)
{
}

void Listener::reelDbChanged(LightweightString<char> id)
{
  note("list(" + std::string(id.c_str()) + ")");
  if (as_.habit == Habit::LeavesWhenListChanges) {
    driver_.manager_.deRegisterClient(this);
  } else if (as_.habit == Habit::CreatesWhenListChanges && !as_.done) {
    as_.done = true;
    driver_.manager_.createNewReel(as_.makes.c_str(), -1);
  }
}

void Listener::ourReelDbRecChanged()
{
  note("our");
  if (as_.habit == Habit::EndsWhenItsReelChanges)
    driver_.listeners_.erase(number_); // ends this
}

void Listener::someReelDbRecChanged(LightweightString<char> id)
{
  // What a client reads shows whether it was notified before or after the change.
  ReelDbRec reel = driver_.manager_.getReelInfo(id);
  note("some(" + std::string(id.c_str()) + ") sees " + reel.typeName().c_str() + " " +
       std::to_string(reelhost::materialOf(reel).audioChannels) + " " + std::to_string(reel.reelAvailable()));
  if (as_.habit == Habit::BringsOneWhenRecChanges && !as_.done) {
    as_.done = true;
    driver_.newListener({id.c_str(), Habit::Listens, {}});
  }
}

void Listener::note(const std::string& what)
{
  driver_.heard_.push_back(std::to_string(number_) + ":" + what);
}

int Driver::newListener(const ModelClient& client)
{
  ++lastListener_;
  listeners_[lastListener_] = std::make_unique<Listener>(*this, lastListener_, client);
  return lastListener_;
}

} // namespace reeldb_fuzz
