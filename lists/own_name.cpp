// SPDX-License-Identifier: Apache-2.0
#include "lists/own_name.h"

#include "lists/name_forms.h"
#include "lists/names.h"

namespace reeldb::lists {
namespace {

/// Whether the text can name a reel at all.
bool isName(std::string_view text)
{
  return !text.empty() && !isAuxiliary(text) && specialReason(text).empty();
}

} // namespace

std::string_view wordOf(NameEvidence evidence)
{
  switch (evidence) {
  case NameEvidence::ReelMap:
    return "reel-map";
  case NameEvidence::SourceFile:
    return "source-file";
  case NameEvidence::SourceTable:
    return "source-table";
  case NameEvidence::ReplacedReel:
    return "replaced-reel";
  case NameEvidence::ReelNote:
    return "reel-note";
  case NameEvidence::ClipName:
    return "clip-name";
  case NameEvidence::CameraRoll:
    return "camera-roll";
  case NameEvidence::SoundRoll:
    return "sound-roll";
  case NameEvidence::ReelText:
    return "reel";
  }
  return "";
}

std::vector<OwnName> ownNames(const NameTexts& texts)
{
  std::vector<OwnName> names;
  const bool fills = fillsField(texts.reel, texts.field);
  const auto add = [&](std::string_view name, NameEvidence evidence, bool mayBeCut = false) {
    names.push_back({std::string(name), evidence, mayBeCut, {}});
  };
  const auto addFile = [&](std::string_view file) {
    for (const std::string_view name : {file, fileName(file)}) {
      if (!isName(name))
        continue;
      const bool addsEnding = isShortForm(texts.reel, false, name);
      if (addsEnding || isSameName(texts.reel, name)) {
        add(texts.reel, NameEvidence::SourceFile);
        if (addsEnding)
          names.back().file = name;
        return;
      }
      if (fills && isCutForm(texts.reel, name))
        return add(name, NameEvidence::SourceFile);
    }
  };
  addFile(texts.sourceFile);
  addFile(texts.rowSourceFile);
  if (isName(texts.rowName))
    add(texts.rowName, NameEvidence::SourceTable,
        texts.rowSourceFile.empty() && fillsField(texts.rowName, texts.rowField));
  if (!texts.replacedReel.empty())
    add(texts.replacedReel, NameEvidence::ReplacedReel);
  if (fills && isName(texts.reelNote) && isCutForm(texts.reel, texts.reelNote))
    add(texts.reelNote, NameEvidence::ReelNote);
  const std::string_view clipName = withoutAdditions(texts.clipName);
  const bool isFile = partsOf(clipName).ending != Ending::None;
  if (fills && (isFile || texts.anyClipName) && isName(clipName) && isCutForm(texts.reel, clipName))
    add(clipName, NameEvidence::ClipName);
  add(texts.reel, NameEvidence::ReelText, fills);
  return names;
}

OwnName ownNameWithoutTape(std::string_view sourceFile, std::string_view clipName)
{
  if (!sourceFile.empty() && !isAuxiliary(sourceFile))
    return {std::string(fileName(sourceFile)), NameEvidence::SourceFile};
  const std::string_view name = withoutAdditions(clipName);
  return {isAuxiliary(name) ? std::string() : std::string(name), NameEvidence::ClipName};
}

} // namespace reeldb::lists
