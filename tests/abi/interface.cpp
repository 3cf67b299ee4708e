// SPDX-License-Identifier: Apache-2.0
//
// Mentions every class of the exported headers and of the host interface, so that the ABI check sees how each is laid
// out and in which order its virtual functions stand. Compiled for that check alone; nothing runs it.
#include "CreateNewReelAction.h"
#include "ReelDbClient.h"
#include "ReelDbManager.h"
#include "ReelDbRec.h"
#include "ReelTypeManager.h"
#include "host/action.h"
#include "host/config.h"
#include "host/containers.h"
#include "host/cookie.h"
#include "host/device.h"
#include "host/edit.h"
#include "host/events.h"
#include "host/lwstring.h"
#include "host/os.h"
#include "host/projdb.h"
#include "host/refcount.h"
#include "host/text.h"

void exportedHeaders(CreateNewReelAction&, ReelDbClient&, ReelDbManager&, ReelDbRec&, ReelType&, ReelTypeManager&) {}

// --- The host interface, header by header --------------------------------------------------------
void action(iObject&, iExecutableAction&) {}
void config(strp_field&, configb&, SystemCfg&) {}
void containers(ArrayRec&, StringRec&, Array&, StringList&, AssocListRep&, AssocListRep::Entry&, AssocList&,
                AssocListIter&)
{
}
void cookie(Zr::UUID&, Cookie&, LightweightVector<Cookie>&, CookieVec&, CookieSetRep&, CookieSet&, IdStamp&) {}
void device(ExtDeviceConfig&, ExtDeviceConfigurationManager&, LabelMappingSet&, LabelMappingSet::Entry&) {}
void edit(Cel&, LogAttributes::Map&, Edit&, EditPtr&, EditInfo&, EditModifier&) {}
void events(EditModification&, ProjectListener&) {}
void lwstring(LightweightString<char>&, LightweightString<wchar_t>&) {}
void os(iAllocator&, iRefCountService&, iHostServices&) {}
void projectDatabase(dbrecord&, projdb&, projdb::SearchCriteria&, ODBViewRep&, ODBView&, EditManager&) {}
void refcount(Zr::InternalRefCount&, Zr::Ptr<iExecutableAction>&) {}
void text(GrowString&, ByteStream&) {}
