// SPDX-License-Identifier: Apache-2.0
#ifndef REELDB_TESTS_FAULTS_ANSWERING_HOST_H
#define REELDB_TESTS_FAULTS_ANSWERING_HOST_H

#include <string>

namespace reeldb_tests {

std::string printedSoFar(); ///< on the debug output, up to 4,095 bytes
void forgetPrinted();

} // namespace reeldb_tests

#endif
