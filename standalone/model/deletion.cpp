// SPDX-License-Identifier: Apache-2.0
#include "model/listeners.h"
#include "model/project.h"
#include "reelhost/host.h"

namespace reelhost {

int deleteLogs(const CookieVec& logs)
{
  const CookieVec gone = model::requireProject("deletion").erase(logs);
  if (!gone.empty())
    model::notifyLogsDeletion(gone);
  return gone.count();
}

int undelete()
{
  return model::requireProject("undelete").undelete();
}

Compacted compact()
{
  return model::requireProject("compact").compact();
}

int forgetHistory(std::int64_t before)
{
  return model::requireProject("forget history").forgetHistory(before);
}

} // namespace reelhost
