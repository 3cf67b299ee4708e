// SPDX-License-Identifier: Apache-2.0
#include "host/refcount.h"

#include "host/os.h"

namespace Zr {

InternalRefCount::InternalRefCount() : refs_(0) {}

InternalRefCount::~InternalRefCount() {}

void InternalRefCount::addRef() const
{
  OS()->refCounts().incRef(&refs_);
}

void InternalRefCount::release() const
{
  if (OS()->refCounts().decRef(&refs_) == 0)
    delete this;
}

} // namespace Zr
