// SPDX-License-Identifier: Apache-2.0
#include "ReelDbRec.h"
#include "host/codes.h"
#include "host/device.h"
#include "host/projdb.h"
#include "reelrec/open_log.h"
#include "reeltypes/known_type.h"

using reeldb::OpenLog;

namespace {

struct ChannelCounts {
  long long audio;
  long long video;
};

ChannelCounts wantedByDevice(ReelDbRec& rec)
{
  const LightweightString<wchar_t> name = rec.lastDevice();
  const int device = theConfigurationManager().findConfigForName(name);
  const ExtDeviceConfig config = theConfigurationManager().getConfig(device);
  const int audioInputs = config.getNumConnectedAudioInputs();
  return {audioInputs, config.getInputType() != codes::noVideoInput ? 1 : 0};
}

ChannelCounts wanted(ReelDbRec& rec)
{
  if (rec.valid()) {
    const LightweightString<char> type = rec.typeName();
    if (!type.empty() && reeldb::isKnownType(type)) {
      const int audioChannels = theReelTypeManager()->numAudioChans(rec.typeName());
      return {audioChannels, theReelTypeManager()->numVideoChans(rec.typeName())};
    }
  }
  return wantedByDevice(rec);
}

int present(const OpenLog& log, EditChanType type)
{
  return log->getNumChans(type) & codes::channelCountMask;
}

/// Adds @p missing channels; adds no channel if the number is not positive.
void addChannels(const OpenLog& log, EditChanType type, long long missing)
{
  for (long long i = 0; i < missing; ++i)
    reeldb::addChannel(log, type);
}

} // namespace

void ReelDbRec::updateNumChansInReel()
{
  const OpenLog log(*this);
  if (!log)
    return;
  const ChannelCounts counts = wanted(*this);
  const long long missingAudio = counts.audio - present(log, codes::audioChannel);
  const long long missingVideo = counts.video - present(log, codes::videoChannel);
  addChannels(log, codes::audioChannel, missingAudio);
  addChannels(log, codes::videoChannel, missingVideo);
  if (missingAudio > 0 || missingVideo > 0)
    EditManager::updateProjdbRec(*this);
}
