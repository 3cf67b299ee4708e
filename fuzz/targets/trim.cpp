// SPDX-License-Identifier: Apache-2.0
//
// A text of any bytes: it is trimmed as an identifier (blanks at both ends) and as a text of the type file (all white
// space), and a reel is made with it.
#include <cstdint>

#include "MainThread.h"
#include "ReelDbManager.h"
#include "ReelTypeManager.h"
#include "host/codes.h"
#include "models/reel_types.h"
#include "reelhost/host.h"
#include "support/bytes.h"
#include "support/check.h"

namespace {

using namespace reeldb_fuzz;

std::string withoutBlanks(const std::string& text)
{
  const std::size_t first = text.find_first_not_of(' ');
  return first == std::string::npos ? std::string() : text.substr(first, text.find_last_not_of(' ') - first + 1);
}

void requireTrimmed(ReelDbManager& manager, const std::string& text)
{
  const LightweightString<char> given(text.c_str());
  const LightweightString<char> trimmed = manager.trimLeadingTrailingSpaces(given);
  requireEqual(std::string(trimmed.c_str()), withoutBlanks(text), "trimmed");
  requireEqual(trimmed.length(), withoutBlanks(text).size(), "length of the trimmed text");
  requireEqual(std::string(given.c_str()), text, "what was trimmed, afterwards");
  requireEqual(std::string(manager.trimLeadingTrailingSpaces(trimmed).c_str()), withoutBlanks(text), "trimmed twice");
}

void requireChopped(const std::string& text)
{
  // More than this after the leading white space ends the process, by design.
  if (text.size() - std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()) > longestTypeText)
    return;
  const LightweightString<char> given(text.c_str());
  const LightweightString<char> trimmed = theReelTypeManager()->chopSpaces(given);
  requireEqual(std::string(trimmed.c_str()), chopped(text), "white space taken off");
  requireEqual(std::string(given.c_str()), text, "what white space was taken off, afterwards");
  requireEqual(std::string(theReelTypeManager()->chopSpaces(trimmed).c_str()), chopped(text), "taken off twice");
}

void requireReel(ReelDbManager& manager, const std::string& text)
{
  const std::string id = withoutBlanks(text);
  ReelDbRec reel = manager.createNewReel(text.c_str(), -1);
  if (id.empty() || text.find('*') != std::string::npos) {
    require(!reel.valid(), "a reel was made of no identifier");
    requireEqual(manager.reelList.count(), 0, "reels");
    return;
  }
  require(reel.valid(), "no reel was made");
  // An identifier is read back up to the supported length.
  requireEqual(std::string(reel.reelId().c_str()), id.substr(0, codes::longestText), "identifier of the reel");
  require(manager.doesReelExist(id.c_str()), "the reel is not found");
  require(!manager.createNewReel(id.c_str(), -1).valid(), "the reel was made twice");
  // The library looks for the reel before it removes blanks, so a text with blanks makes a second reel of the same
  // name.
  requireEqual(manager.createNewReel(text.c_str(), -1).valid(), id != text, "made again from the same text");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
  const std::string text = upToNul(allOf(data, size));
  ReelDbManager& manager = *ReelDbManager::theReelDbManager();
  reelhost::startUp();
  requireTrimmed(manager, text);
  requireChopped(text);

  reelhost::ProjectInfo info;
  info.uuid.fill('T');
  reelhost::openProject(reelhost::makeMemoryStore(info), reelhost::Access::Write);
  requireReel(manager, text);
  reelhost::closeProject();
  return 0;
}
