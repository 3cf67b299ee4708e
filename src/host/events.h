// SPDX-License-Identifier: Apache-2.0
/// @file
/// What the host tells those who listen to the project. Main thread only.
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

/// A message of the host; the library only hands it to ExtDeviceConfigurationManager::DeviceChangedMsgParser.
class NotifyMsg;

/// Hears of project and log events. The order of the virtual functions is part of the contract; there is no virtual
/// destructor. How a host finds its listeners is its own business: the protected constructor and destructor are where
/// it can keep count of them. While an event is told, listeners may come and go: one that comes hears the next event,
/// one that goes hears nothing more. Each event does nothing unless overridden.
class ProjectListener {
public:
  virtual void handleLogsModification(const CookieVec&);
  /// The log was made, imported or modified; it is there already.
  virtual void handleLogModification(const Cookie&, const EditModification&);
  /// The logs were deleted; none of them opens any more. The text is the host's own.
  virtual void handleLogsDeletion(const CookieVec&, LightweightString<char>);
  virtual void handleLogDirtied(const Cookie&);
  virtual void handleLogStorage(const Cookie&, bool); ///< the log was stored; the flag is the host's own
  virtual void handleProjectEntry();                  ///< a project was entered; it is there already
  virtual void handleProjectExit();                   ///< the project is about to be left; it is still there

protected:
  ProjectListener();  ///< from here on it hears events
  ~ProjectListener(); ///< from here on it hears none
};

#endif
