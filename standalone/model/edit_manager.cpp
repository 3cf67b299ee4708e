// SPDX-License-Identifier: Apache-2.0
#include "host/projdb.h"
#include "host/text.h"
#include "journal/host_call.h"
#include "model/log.h"
#include "model/project.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::model::Log;
using reelhost::model::openedProject;

namespace {

/// A new log, written as its Cookie.
struct NewLog {
  Log* log;
};

std::string describe(const NewLog& made)
{
  return made.log ? reelhost::describe(made.log->cookie) : "null";
}

configb& optionsWithoutProject()
{
  static configb& none = *new configb;
  reelhost::model::blockOf(none).assign({}); // options set without a project are dropped
  return none;
}

} // namespace

void EditManager::updateProjdbRec(const Cookie& cookie)
{
  hostCall(
      "EditManager::updateProjdbRec", [&] { return describeAll(cookie); },
      [&] {
        if (Log* const log = openedProject ? openedProject->find(cookie) : nullptr)
          log->shownReelType = log->reelTypeName;
      });
}

// The library passes only an invalid Cookie: it never requests a log of a certain name.
EditModifier EditManager::makeNewEdit(const Cookie& cookie)
{
  const NewLog made = hostCall(
      "EditManager::makeNewEdit", [&] { return describeAll(cookie); },
      [] { return NewLog{openedProject ? &openedProject->create({}) : nullptr}; });
  return EditModifier(made.log ? &made.log->edit : nullptr);
}

configb& EditManager::ProjOpts()
{
  return *hostCall("EditManager::ProjOpts", noArguments, [] {
            return reelhost::Unwritten<configb>{openedProject ? &openedProject->options() : &optionsWithoutProject()};
          }).object;
}
