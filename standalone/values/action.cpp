// SPDX-License-Identifier: Apache-2.0
#include "host/action.h"

iObject::~iObject() {}

iExecutableAction::~iExecutableAction() {}
