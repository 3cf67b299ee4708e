// SPDX-License-Identifier: Apache-2.0
#include "reeldb/client_pass.h"

namespace reeldb {

ClientPass* ClientPass::innermost_ = nullptr;

ClientPass::ClientPass() : outer_(innermost_), current_(nullptr)
{
  innermost_ = this;
}

ClientPass::~ClientPass()
{
  innermost_ = outer_;
}

void ClientPass::clientEnds(const ReelDbClient* client)
{
  for (ClientPass* pass = innermost_; pass; pass = pass->outer_)
    if (pass->current_ == client)
      pass->current_ = nullptr;
}

} // namespace reeldb
