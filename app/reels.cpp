// SPDX-License-Identifier: Apache-2.0
#include "app/reels.h"

#include <fmt/format.h>

#include "app/decisions.h"
#include "app/device_settings.h"
#include "app/host_errors.h"
#include "app/host_text.h"
#include "app/plain_text.h"
#include "app/reel_records.h"
#include "base/text_width.h"
#include "reelhost/host.h"

namespace reeldb::app {

namespace {

constexpr int noDevice = -1;

/// The result of ReelDbManager::checkReelValid for a reel whose type is in the catalogue.
constexpr int validReel = 0;

std::string quoted(const std::string& id)
{
  return '"' + base::shortText(id) + '"';
}

/// Throws the Error that explains why the library refused a name that passed our checks.
[[noreturn]] void explainRefusal(ReelDbManager& manager, const std::string& id)
{
  const LightweightString<char> asked = hostText(id);
  if (manager.doesReelExist(asked))
    throw Error(ErrorKind::Refused,
                fmt::format("{}: already exists", quoted(text(manager.getReelInfo(asked).reelId()))));
  throw Error(ErrorKind::Refused, fmt::format("{}: no reel made", quoted(id)));
}

/// Throws Error if one of the texts to copy is not plain text. This room stores only plain text, but other programs may
/// have stored anything.
void requirePlainTexts(const Reel& reel)
{
  const auto require = [&reel](const std::string& value, const std::string& field) {
    requirePlainText(value, fmt::format("{}: its {} cannot be copied", base::shortText(reel.id), field));
  };
  require(reel.type, "type");
  require(reel.labelMapping, "label map");
  for (std::size_t i = 0; i < userFieldCount; ++i)
    require(reel.userFields[i], fmt::format("user field {}", i));
}

} // namespace

std::vector<Reel> listReels(Session& session)
{
  return guarded([&] {
    const ShotCounts shots = reelhost::shotCounts();
    std::vector<Reel> reels;
    for (const Cookie& log : session.manager().reelList)
      if (Reel reel = readReel(ReelDbRec(log), shots); !reel.id.empty())
        reels.push_back(std::move(reel));
    return reels;
  });
}

ReelDetails showReel(Session& session, const std::string& id)
{
  return guarded([&] {
    ReelDbManager& manager = session.manager();
    ReelDetails details;
    details.reel = readReel(requireReel(manager, id), reelhost::shotCounts());
    details.knownType = manager.checkReelValid(hostText(id)) == validReel;
    details.live = manager.representsLiveMaterial(hostText(id));
    return details;
  });
}

std::array<std::string, userFieldCount> userFieldNames()
{
  std::array<std::string, userFieldCount> names;
  for (std::size_t i = 0; i < userFieldCount; ++i)
    names[i] = text(ReelDbManager::theReelDbManager()->userFieldName(static_cast<int>(i)));
  return names;
}

CreatedReel createReel(Session& session, const std::string& id, const std::optional<std::string>& device)
{
  return guarded([&] {
    checkedReelName(id);
    const int number = device ? requireDevice(*device).number : noDevice;
    const ShotCounts shots = reelhost::shotCounts(); // before the change: the store can count only stored shots
    ReelDbManager& manager = session.manager();
    ReelDbRec made = manager.createNewReel(hostText(id), number);
    if (!made.valid())
      explainRefusal(manager, id);
    // The library looks for the identifier as it was given, but stores it without outer blanks, or stores the device's
    // name. So a reel of the stored name may already exist, and the second of two such reels would never be found.
    const std::string stored = text(made.reelId());
    checkedReelName(stored); // the library does not check that name
    if (stored != id && manager.getCookieFromReelId(hostText(stored)).compare(made) != 0)
      throw Error(ErrorKind::Refused, fmt::format("{}: already exists", quoted(stored)));
    requireNotGiven(manager, stored);
    CreatedReel result;
    keepGivenName(made);
    remarkOnSpecialName(stored, result.remarks);
    result.reel = readReel(made, shots);
    remarkOnUnlistedType(result.reel.type, result.remarks); // the project's default type
    session.commit();
    return result;
  });
}

CopiedReel copyReel(Session& session, const std::string& from, const std::string& to)
{
  return guarded([&] {
    const ShotCounts shots = reelhost::shotCounts();
    ReelDbManager& manager = session.manager();
    // The library would also copy from a reel that does not exist, which would empty the other reel.
    ReelDbRec source = requireReel(manager, from);
    ReelDbRec target = requireReel(manager, to);
    CopiedReel result;
    result.from = text(source.reelId());
    result.to = text(target.reelId());
    requirePlainTexts(readReel(source, {}));
    manager.copyReelInfo(hostText(result.from), hostText(result.to));
    result.reel = readReel(target, shots);
    result.stored = session.commit();
    return result;
  });
}

} // namespace reeldb::app
