// SPDX-License-Identifier: Apache-2.0
#include <algorithm>
#include <cstring>

#include "host/projdb.h"
#include "journal/host_call.h"
#include "model/log.h"
#include "model/log_types.h"
#include "model/project.h"

using reelhost::describeAll;
using reelhost::hostCall;
using reelhost::noArguments;
using reelhost::model::Log;
using reelhost::model::openedProject;

namespace {

/// A row of the view. It keeps its own texts, so that they stay valid while it is shown.
struct ViewRow {
  const char* type;
  LightweightString<char> reelType;
};

} // namespace

struct ODBViewRep::Impl {
  std::vector<ViewRow> rows;

  /// Shows the rows of these logs from @p position on, without logs that have no row or that are @p hidden.
  template <class Hidden>
  void show(const std::vector<Cookie>& logs, int position, const Hidden& hidden)
  {
    rows.resize(std::min(rows.size(), static_cast<std::size_t>(std::max(position, 0))));
    for (const Cookie& cookie : logs)
      if (const Log* const log = openedProject ? openedProject->find(cookie) : nullptr; log && !hidden(cookie))
        rows.push_back({reelhost::model::textOf(log->type), log->shownReelType});
  }
};

ODBViewRep::ODBViewRep(oledb*) : impl_(nullptr)
{
  hostCall("ODBViewRep::ODBViewRep", noArguments, [&] { impl_ = new Impl; });
}

ODBViewRep::~ODBViewRep()
{
  delete impl_;
}

void ODBViewRep::displayRecordsAt(const std::vector<Cookie>& logs, int position)
{
  hostCall(
      "ODBViewRep::displayRecordsAt",
      [&] {
        std::string list;
        for (const Cookie& log : logs)
          list += (list.empty() ? "" : ", ") + reelhost::describe(log);
        return "[" + list + "], " + reelhost::describe(position);
      },
      [&] { impl_->show(logs, position, [](const Cookie&) { return false; }); },
      [&] {
        impl_->show(logs, position, reelhost::scripted::hasNoRow);
        return true;
      });
}

int ODBViewRep::numRows() const
{
  return hostCall("ODBViewRep::numRows", noArguments, [&] { return static_cast<int>(impl_->rows.size()); });
}

const char* ODBViewRep::cellText(int row, const char* column) const
{
  return hostCall(
      "ODBViewRep::cellText", [&] { return describeAll(row, column); },
      [&]() -> const char* {
        if (row < 0 || static_cast<std::size_t>(row) >= impl_->rows.size() || !column)
          return nullptr;
        const ViewRow& shown = impl_->rows[static_cast<std::size_t>(row)];
        if (std::strcmp(column, "Reel Type") == 0)
          return shown.reelType.c_str();
        return std::strcmp(column, "Type") == 0 ? shown.type : nullptr;
      });
}

ODBView::ODBView(ODBViewRep* rep) : rep_(rep) {}

ODBView::~ODBView()
{
  hostCallNoThrow("ODBView::~ODBView", noArguments, [] {});
}

ODBViewRep* ODBView::operator->() const
{
  return rep_.get();
}
