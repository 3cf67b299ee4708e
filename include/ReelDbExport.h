// SPDX-License-Identifier: Apache-2.0
/// @file
/// What makes a declaration an exported one.
#ifndef REELDB_EXPORT_H
#define REELDB_EXPORT_H

/// Marks what the library exports; everything else stays inside it. The complete list is exports.txt beside this file.
#define REELDB_EXPORT __attribute__((visibility("default")))

#endif
