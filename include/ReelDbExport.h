// SPDX-License-Identifier: Apache-2.0
/// @file
/// The macro that exports a declaration.
#ifndef REELDB_EXPORT_H
#define REELDB_EXPORT_H

/// Marks an exported declaration; all others are hidden. exports.txt, beside this file, lists every exported symbol.
#define REELDB_EXPORT __attribute__((visibility("default")))

#endif
