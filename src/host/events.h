// SPDX-License-Identifier: Apache-2.0
/// @file
/// Project and log events, and their listeners. Main thread only.
#ifndef REELDB_HOST_EVENTS_H
#define REELDB_HOST_EVENTS_H

#include "cookie.h"
#include "edit.h"
#include "lwstring.h"

// Also in a host that is compiled with -fvisibility=hidden.
#pragma GCC visibility push(default)

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

/// Is notified of project and log events. The order of the virtual functions is part of the contract; there is no
/// virtual destructor. The host decides how it finds its listeners; it can register them in the protected constructor
/// and destructor. Listeners may be created and destroyed during an event. A new listener receives the next event; a
/// destroyed one receives no more. Each function does nothing unless overridden. The library needs handleProjectEntry,
/// handleProjectExit and handleLogModification. It ignores the others, so a host need not report those.
class ProjectListener {
public:
  virtual void handleLogsModification(const CookieVec&);
  /// The log was created, imported or modified; it is in the project already.
  virtual void handleLogModification(const Cookie&, const EditModification&);
  /// The logs were deleted and cannot be opened any more. The library does not use the text.
  virtual void handleLogsDeletion(const CookieVec&, LightweightString<char>);
  virtual void handleLogDirtied(const Cookie&);
  virtual void handleLogStorage(const Cookie&, bool); ///< the log was stored; the library does not use the flag
  virtual void handleProjectEntry();                  ///< a project was entered and is open
  virtual void handleProjectExit();                   ///< the project is about to be left and is still open

protected:
  ProjectListener();  ///< registers the listener
  ~ProjectListener(); ///< unregisters the listener
};

#pragma GCC visibility pop

#endif
