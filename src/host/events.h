// SPDX-License-Identifier: Apache-2.0
//
// What the host tells those who listen to the project. Main thread only.
#ifndef REELDB_HOST_EVENTS_H
#define REELDB_HOST_EVENTS_H

#include "cookie.h"
#include "edit.h"
#include "lwstring.h"

/// The description of one change to a log.
class EditModification {
public:
  explicit EditModification(EditModificationType t) : type_(t) {}
  EditModificationType type() const { return type_; }

private:
  EditModificationType type_;
};

class NotifyMsg; ///< a message of the host; the library only hands it on

/// Hears of project and log events. The order of the virtual functions is part of the contract; there is no virtual
/// destructor. How a host finds its listeners is its own business: the protected constructor and destructor are where
/// it can keep count of them.
class ProjectListener {
public:
  virtual void handleLogsModification(const CookieVec&);
  virtual void handleLogModification(const Cookie&, const EditModification&);
  virtual void handleLogsDeletion(const CookieVec&, LightweightString<char>);
  virtual void handleLogDirtied(const Cookie&);
  virtual void handleLogStorage(const Cookie&, bool);
  virtual void handleProjectEntry();
  virtual void handleProjectExit();

protected:
  ProjectListener();
  ~ProjectListener();
};

#endif
