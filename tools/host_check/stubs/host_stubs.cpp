// SPDX-License-Identifier: Apache-2.0
//
// What a host provides, each operation still to be written: a call of one ends the program and says which it was. The
// headers in host/ describe what each has to do.
#include <cstdio>
#include <cstdlib>

#include "host/action.h"
#include "host/codes.h"
#include "host/config.h"
#include "host/containers.h"
#include "host/cookie.h"
#include "host/device.h"
#include "host/edit.h"
#include "host/events.h"
#include "host/lwstring.h"
#include "host/os.h"
#include "host/projdb.h"
#include "host/project.h"
#include "host/refcount.h"
#include "host/text.h"

namespace {

[[noreturn]] void unwritten(const char* operation) {
  std::fprintf(stderr, "%s: the host does not have it yet\n", operation);
  std::abort();
}

} // namespace

// --- host/os.h: OS
iHostServices* OS() { unwritten("OS"); }

// --- host/refcount.h: Zr::InternalRefCount
Zr::InternalRefCount::InternalRefCount() { unwritten("Zr::InternalRefCount::InternalRefCount"); }
Zr::InternalRefCount::~InternalRefCount() { unwritten("Zr::InternalRefCount::~InternalRefCount"); }
void Zr::InternalRefCount::addRef() const { unwritten("Zr::InternalRefCount::addRef"); }
void Zr::InternalRefCount::release() const { unwritten("Zr::InternalRefCount::release"); }

// --- host/action.h: iObject
iObject::~iObject() {}

// --- host/action.h: iExecutableAction
iExecutableAction::~iExecutableAction() {}

// --- host/action.h: defer, co_pid
void defer(const Zr::Ptr<iExecutableAction>&) { unwritten("defer"); }
int co_pid() { unwritten("co_pid"); }

// --- host/lwstring.h: LightweightString, operator+, operator+=
template <class C> LightweightString<C>::LightweightString() { unwritten("LightweightString::LightweightString"); }
template <class C> LightweightString<C>::LightweightString(const C*) {
  unwritten("LightweightString::LightweightString");
}
template <class C> LightweightString<C>::LightweightString(const C*, std::size_t) {
  unwritten("LightweightString::LightweightString");
}
template <class C> LightweightString<C>::LightweightString(const LightweightString&) {
  unwritten("LightweightString::LightweightString");
}
template <class C> LightweightString<C>::LightweightString(LightweightString&&) noexcept {
  unwritten("LightweightString::LightweightString");
}
template <class C> LightweightString<C>::~LightweightString() { unwritten("LightweightString::~LightweightString"); }
template <class C> LightweightString<C>& LightweightString<C>::operator=(const LightweightString&) {
  unwritten("LightweightString::operator=");
}
template <class C> LightweightString<C>& LightweightString<C>::operator=(LightweightString&&) noexcept {
  unwritten("LightweightString::operator=");
}
template <class C> LightweightString<C>& LightweightString<C>::operator=(const C*) {
  unwritten("LightweightString::operator=");
}
template <class C> const C* LightweightString<C>::c_str() const { unwritten("LightweightString::c_str"); }
template <class C> std::size_t LightweightString<C>::length() const { unwritten("LightweightString::length"); }
template <class C> bool LightweightString<C>::empty() const { unwritten("LightweightString::empty"); }
template <class C> C* LightweightString<C>::writable() { unwritten("LightweightString::writable"); }
template <class C> LightweightString<C>& LightweightString<C>::append(const C*) {
  unwritten("LightweightString::append");
}
template <class C> LightweightString<C>& LightweightString<C>::append(const LightweightString&) {
  unwritten("LightweightString::append");
}
template <class C> LightweightString<C> operator+(const LightweightString<C>&, const LightweightString<C>&) {
  unwritten("operator+");
}
template class LightweightString<char>;
template class LightweightString<wchar_t>;
template LightweightString<char> operator+(const LightweightString<char>&, const LightweightString<char>&);
template LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&, const LightweightString<wchar_t>&);
LightweightString<char> operator+(const char*, const LightweightString<char>&) { unwritten("operator+"); }
LightweightString<char> operator+(const LightweightString<char>&, const char*) { unwritten("operator+"); }
LightweightString<wchar_t> operator+(const LightweightString<wchar_t>&, const wchar_t*) { unwritten("operator+"); }
LightweightString<char>& operator+=(LightweightString<char>&, int) { unwritten("operator+="); }

// --- host/text.h: toUTF8, fromUTF8, toUpper, trimTrailingSpaces, paddedResourceStrW, vorn_printf, Zr::WStringFromAscii
LightweightString<char> toUTF8(const LightweightString<wchar_t>&) { unwritten("toUTF8"); }
LightweightString<wchar_t> fromUTF8(const LightweightString<char>&) { unwritten("fromUTF8"); }
void toUpper(LightweightString<char>&) { unwritten("toUpper"); }
void trimTrailingSpaces(LightweightString<char>&) { unwritten("trimTrailingSpaces"); }
LightweightString<wchar_t> paddedResourceStrW(ResId, const wchar_t*, const wchar_t*, ResStrFmt) {
  unwritten("paddedResourceStrW");
}
int vorn_printf(const char*, ...) { unwritten("vorn_printf"); }
LightweightString<wchar_t> Zr::WStringFromAscii(const char*) { unwritten("Zr::WStringFromAscii"); }

// --- host/text.h: GrowString
GrowString::GrowString() { unwritten("GrowString::GrowString"); }
GrowString::GrowString(const GrowString&) { unwritten("GrowString::GrowString"); }
GrowString::~GrowString() { unwritten("GrowString::~GrowString"); }
GrowString& GrowString::operator=(const GrowString&) { unwritten("GrowString::operator="); }
GrowString& GrowString::operator=(const char*) { unwritten("GrowString::operator="); }
void GrowString::append(const char*) { unwritten("GrowString::append"); }
void GrowString::append(char) { unwritten("GrowString::append"); }
GrowString& GrowString::operator<<(unsigned) { unwritten("GrowString::operator<<"); }
GrowString::operator const char*() const { unwritten("GrowString::operator const char *"); }
void GrowString::put(std::size_t, const char*, std::size_t) { unwritten("GrowString::put"); }

// --- host/text.h: ByteStream, operator>>
ByteStream::ByteStream(FILE*) { unwritten("ByteStream::ByteStream"); }
ByteStream::ByteStream(GrowString&) { unwritten("ByteStream::ByteStream"); }
ByteStream::ByteStream(const LightweightString<char>&) { unwritten("ByteStream::ByteStream"); }
ByteStream::~ByteStream() { unwritten("ByteStream::~ByteStream"); }
bool ByteStream::atEnd() const { unwritten("ByteStream::atEnd"); }
ByteStream& operator>>(ByteStream&, GrowString&) { unwritten("operator>>"); }

// --- host/containers.h: ArrayRec
ArrayRec::ArrayRec() { unwritten("ArrayRec::ArrayRec"); }
ArrayRec::~ArrayRec() { unwritten("ArrayRec::~ArrayRec"); }
int ArrayRec::compare(const ArrayRec&) const { unwritten("ArrayRec::compare"); }
bool ArrayRec::operator==(const ArrayRec&) const { unwritten("ArrayRec::operator=="); }
bool ArrayRec::operator!=(const ArrayRec&) const { unwritten("ArrayRec::operator!="); }
void ArrayRec::printOn(GrowString&) const { unwritten("ArrayRec::printOn"); }

// --- host/containers.h: Array
Array::Array() { unwritten("Array::Array"); }
Array::~Array() { unwritten("Array::~Array"); }
void Array::init() { unwritten("Array::init"); }
void Array::clear() { unwritten("Array::clear"); }
void Array::add(ArrayRec*) { unwritten("Array::add"); }
void Array::append(ArrayRec*) { unwritten("Array::append"); }
void Array::remove(unsigned) { unwritten("Array::remove"); }
void Array::sorted(bool) { unwritten("Array::sorted"); }
unsigned Array::count() const { unwritten("Array::count"); }
ArrayRec* Array::at(unsigned) const { unwritten("Array::at"); }

// --- host/containers.h: StringList
StringList::StringList() { unwritten("StringList::StringList"); }
StringList::StringList(const StringList&) { unwritten("StringList::StringList"); }
StringList& StringList::operator=(const StringList&) { unwritten("StringList::operator="); }
StringList::~StringList() { unwritten("StringList::~StringList"); }
void StringList::clear() { unwritten("StringList::clear"); }
void StringList::add(const LightweightString<char>&) { unwritten("StringList::add"); }
void StringList::remove(const LightweightString<char>&) { unwritten("StringList::remove"); }
bool StringList::contains(const LightweightString<char>&) const { unwritten("StringList::contains"); }
const LightweightString<char>& StringList::operator[](unsigned) const { unwritten("StringList::operator[]"); }

// --- host/containers.h: AssocListRep
AssocListRep::AssocListRep(bool) { unwritten("AssocListRep::AssocListRep"); }
AssocListRep::~AssocListRep() { unwritten("AssocListRep::~AssocListRep"); }
Zr::Ptr<AssocListRep::Entry> AssocListRep::find(const LightweightString<char>&) const {
  unwritten("AssocListRep::find");
}
AssocListRep::Entry& AssocListRep::findOrCreate(const LightweightString<char>&) {
  unwritten("AssocListRep::findOrCreate");
}
AssocListRep::Entry* AssocListRep::entry(unsigned) const { unwritten("AssocListRep::entry"); }
unsigned AssocListRep::count() const { unwritten("AssocListRep::count"); }
void AssocListRep::discardAll() { unwritten("AssocListRep::discardAll"); }

// --- host/containers.h: AssocList
AssocList::AssocList(AssocListRep*) { unwritten("AssocList::AssocList"); }
AssocList::~AssocList() { unwritten("AssocList::~AssocList"); }
AssocListRep::Entry& AssocList::operator[](const LightweightString<char>&) { unwritten("AssocList::operator[]"); }
AssocListRep::Entry& AssocList::at(unsigned) const { unwritten("AssocList::at"); }
AssocListRep* AssocList::rep() const { unwritten("AssocList::rep"); }

// --- host/containers.h: AssocListIter
AssocListIter::AssocListIter(const AssocList&) { unwritten("AssocListIter::AssocListIter"); }
const AssocListRep::Entry* AssocListIter::operator*() const { unwritten("AssocListIter::operator*"); }
AssocListIter& AssocListIter::operator++() { unwritten("AssocListIter::operator++"); }

// --- host/cookie.h: Zr::UUID
Zr::UUID::UUID() { unwritten("Zr::UUID::UUID"); }
Zr::UUID::UUID(const Zr::UUID&) { unwritten("Zr::UUID::UUID"); }
Zr::UUID& Zr::UUID::operator=(const Zr::UUID&) { unwritten("Zr::UUID::operator="); }
int Zr::UUID::compare(const Zr::UUID&) const { unwritten("Zr::UUID::compare"); }

// --- host/cookie.h: Cookie
Cookie::Cookie() { unwritten("Cookie::Cookie"); }
Cookie::Cookie(const char*, bool) { unwritten("Cookie::Cookie"); }
Cookie::Cookie(const Zr::UUID&, std::uint16_t, char) { unwritten("Cookie::Cookie"); }
void Cookie::invalidate() { unwritten("Cookie::invalidate"); }
int Cookie::compare(const Cookie&) const { unwritten("Cookie::compare"); }
LightweightString<char> Cookie::asString(bool) const { unwritten("Cookie::asString"); }

// --- host/cookie.h: LightweightVector, CookieVec
LightweightVector<Cookie>::LightweightVector() { unwritten("LightweightVector::LightweightVector"); }
LightweightVector<Cookie>::LightweightVector(const LightweightVector&) {
  unwritten("LightweightVector::LightweightVector");
}
LightweightVector<Cookie>& LightweightVector<Cookie>::operator=(const LightweightVector&) {
  unwritten("LightweightVector::operator=");
}
LightweightVector<Cookie>::~LightweightVector() { unwritten("LightweightVector::~LightweightVector"); }
CookieVec::CookieVec() { unwritten("CookieVec::CookieVec"); }
CookieVec::CookieVec(const CookieVec&) { unwritten("CookieVec::CookieVec"); }
CookieVec& CookieVec::operator=(const CookieVec&) { unwritten("CookieVec::operator="); }
CookieVec::~CookieVec() { unwritten("CookieVec::~CookieVec"); }
int CookieVec::count() const { unwritten("CookieVec::count"); }
bool CookieVec::empty() const { unwritten("CookieVec::empty"); }
const Cookie& CookieVec::operator[](int) const { unwritten("CookieVec::operator[]"); }
const Cookie* CookieVec::begin() const { unwritten("CookieVec::begin"); }
const Cookie* CookieVec::end() const { unwritten("CookieVec::end"); }
void CookieVec::add(const Cookie&) { unwritten("CookieVec::add"); }
void CookieVec::remove(const Cookie&) { unwritten("CookieVec::remove"); }
void CookieVec::clear() { unwritten("CookieVec::clear"); }

// --- host/cookie.h: CookieSetRep
const Cookie& CookieSetRep::operator[](int) const { unwritten("CookieSetRep::operator[]"); }
int CookieSetRep::count() const { unwritten("CookieSetRep::count"); }
void CookieSetRep::insert(const Cookie&) { unwritten("CookieSetRep::insert"); }

// --- host/cookie.h: CookieSet
CookieSet::CookieSet() { unwritten("CookieSet::CookieSet"); }
CookieSetRep* CookieSet::operator->() const { unwritten("CookieSet::operator->"); }
CookieSetRep& CookieSet::operator*() const { unwritten("CookieSet::operator*"); }
void CookieSet::insert(const Cookie&) { unwritten("CookieSet::insert"); }

// --- host/cookie.h: IdStamp
IdStamp::IdStamp() { unwritten("IdStamp::IdStamp"); }
IdStamp::IdStamp(unsigned) { unwritten("IdStamp::IdStamp"); }
IdStamp::IdStamp(const IdStamp&) { unwritten("IdStamp::IdStamp"); }
IdStamp& IdStamp::operator=(const IdStamp&) { unwritten("IdStamp::operator="); }
bool IdStamp::valid() const { unwritten("IdStamp::valid"); }

// --- host/config.h: strp_field
strp_field::strp_field() { unwritten("strp_field::strp_field"); }
strp_field::strp_field(const strp_field&) { unwritten("strp_field::strp_field"); }
strp_field& strp_field::operator=(const strp_field&) { unwritten("strp_field::operator="); }
strp_field::~strp_field() { unwritten("strp_field::~strp_field"); }
void strp_field::set(const char*) { unwritten("strp_field::set"); }
const char* strp_field::text() const { unwritten("strp_field::text"); }

// --- host/config.h: configb
configb::configb() { unwritten("configb::configb"); }
configb::~configb() { unwritten("configb::~configb"); }
const char* configb::in(const char*) const { unwritten("configb::in"); }
int configb::in(const char*, char*) const { unwritten("configb::in"); }
int configb::in(const char*, int&) const { unwritten("configb::in"); }
int configb::in(const char*, strp_field&) const { unwritten("configb::in"); }
void configb::set(const char*, const char*, const char*) { unwritten("configb::set"); }
void configb::set(const char*, const strp_field&) { unwritten("configb::set"); }

// --- host/config.h: config_string, getDeviceDataDirectory
const char* config_string(const char*, const char*) { unwritten("config_string"); }
LightweightString<wchar_t> getDeviceDataDirectory(iSettings::eType) { unwritten("getDeviceDataDirectory"); }

// --- host/config.h: SystemCfg
SystemCfg& SystemCfg::theConfig() { unwritten("SystemCfg::theConfig"); }
LightweightString<char> SystemCfg::get(const LightweightString<char>&) const { unwritten("SystemCfg::get"); }
void SystemCfg::set(const LightweightString<char>&, const LightweightString<char>&) { unwritten("SystemCfg::set"); }

// --- host/edit.h: LogAttributes::Map
LogAttributes::Map::Map() { unwritten("LogAttributes::Map::Map"); }
LogAttributes::Map::Map(const LogAttributes::Map&) { unwritten("LogAttributes::Map::Map"); }
LogAttributes::Map& LogAttributes::Map::operator=(const LogAttributes::Map&) {
  unwritten("LogAttributes::Map::operator=");
}
LogAttributes::Map::~Map() { unwritten("LogAttributes::Map::~Map"); }
void LogAttributes::Map::add(LogAttributes::eLogAttribute, LightweightString<char>) {
  unwritten("LogAttributes::Map::add");
}

// --- host/edit.h: Edit
configb& Edit::config() { unwritten("Edit::config"); }
eLogType Edit::getLogType() const { unwritten("Edit::getLogType"); }
eLogType Edit::getLogTypeFromString(const LightweightString<char>&) { unwritten("Edit::getLogTypeFromString"); }
bool Edit::isImported() const { unwritten("Edit::isImported"); }
void Edit::get_reelid(strp_field&, int, int) const { unwritten("Edit::get_reelid"); }
void Edit::set_reelid(int, const char*) { unwritten("Edit::set_reelid"); }
void Edit::setName(const LightweightString<wchar_t>&, bool) { unwritten("Edit::setName"); }
void Edit::set_entire_medium(int) { unwritten("Edit::set_entire_medium"); }
void Edit::make_original(bool, bool) { unwritten("Edit::make_original"); }
void Edit::redetermineLogType() { unwritten("Edit::redetermineLogType"); }
void Edit::setChangeDescription(EditModificationType, bool) { unwritten("Edit::setChangeDescription"); }
void Edit::setDirty(bool) { unwritten("Edit::setDirty"); }
void Edit::reelType(const LightweightString<char>&) { unwritten("Edit::reelType"); }
int Edit::getNumChans(EditChanType) const { unwritten("Edit::getNumChans"); }
void Edit::addChan(EditChanType, Zr::Ptr<Cel>, bool, EditChanSubType, bool, double) { unwritten("Edit::addChan"); }
const Zr::UUID& Edit::uuid() const { unwritten("Edit::uuid"); }
std::uint16_t Edit::cookieTag() const { unwritten("Edit::cookieTag"); }
char Edit::cookieKind() const { unwritten("Edit::cookieKind"); }

// --- host/edit.h: EditPtr
EditPtr::EditPtr() { unwritten("EditPtr::EditPtr"); }
EditPtr::~EditPtr() { unwritten("EditPtr::~EditPtr"); }
void EditPtr::i_open(const Cookie&, eEditOpenBehaviour) { unwritten("EditPtr::i_open"); }
void EditPtr::i_close() { unwritten("EditPtr::i_close"); }
EditPtr& EditPtr::operator=(Edit*) { unwritten("EditPtr::operator="); }
Edit* EditPtr::get() const { unwritten("EditPtr::get"); }
Edit* EditPtr::operator->() const { unwritten("EditPtr::operator->"); }
EditPtr::operator bool() const { unwritten("EditPtr::operator bool"); }

// --- host/edit.h: EditInfo
EditInfo::EditInfo(const Cookie&, eEditOpenBehaviour) { unwritten("EditInfo::EditInfo"); }
LightweightString<char> EditInfo::getAttrib(LogAttributes::eLogAttribute) const { unwritten("EditInfo::getAttrib"); }

// --- host/edit.h: EditModifier
EditModifier::EditModifier(Edit*) { unwritten("EditModifier::EditModifier"); }
EditModifier::~EditModifier() { unwritten("EditModifier::~EditModifier"); }
Edit* EditModifier::get() const { unwritten("EditModifier::get"); }

// --- host/events.h: ProjectListener
void ProjectListener::handleLogsModification(const CookieVec&) {}
void ProjectListener::handleLogModification(const Cookie&, const EditModification&) {}
void ProjectListener::handleLogsDeletion(const CookieVec&, LightweightString<char>) {}
void ProjectListener::handleLogDirtied(const Cookie&) {}
void ProjectListener::handleLogStorage(const Cookie&, bool) {}
void ProjectListener::handleProjectEntry() {}
void ProjectListener::handleProjectExit() {}
ProjectListener::ProjectListener() { unwritten("ProjectListener::ProjectListener"); }
ProjectListener::~ProjectListener() { unwritten("ProjectListener::~ProjectListener"); }

// --- host/projdb.h: dbrecord
const char* dbrecord::get_field(unsigned short) const { unwritten("dbrecord::get_field"); }

// --- host/projdb.h: projdb::SearchCriteria
projdb::SearchCriteria::SearchCriteria() { unwritten("projdb::SearchCriteria::SearchCriteria"); }

// --- host/projdb.h: projdb
CookieVec projdb::search(unsigned, unsigned) { unwritten("projdb::search"); }
CookieVec projdb::search(const projdb::SearchCriteria&) { unwritten("projdb::search"); }
dbrecord* projdb::operator[](const Cookie&) { unwritten("projdb::operator[]"); }
unsigned short projdb::findField(const char*) const { unwritten("projdb::findField"); }
oledb* projdb::database() { unwritten("projdb::database"); }

// --- host/projdb.h: ODBViewRep
ODBViewRep::ODBViewRep(oledb*) { unwritten("ODBViewRep::ODBViewRep"); }
ODBViewRep::~ODBViewRep() { unwritten("ODBViewRep::~ODBViewRep"); }
void ODBViewRep::displayRecordsAt(const std::vector<Cookie>&, int) { unwritten("ODBViewRep::displayRecordsAt"); }
int ODBViewRep::numRows() const { unwritten("ODBViewRep::numRows"); }
const char* ODBViewRep::cellText(int, const char*) const { unwritten("ODBViewRep::cellText"); }

// --- host/projdb.h: ODBView
ODBView::ODBView(ODBViewRep*) { unwritten("ODBView::ODBView"); }
ODBView::~ODBView() { unwritten("ODBView::~ODBView"); }
ODBViewRep* ODBView::operator->() const { unwritten("ODBView::operator->"); }

// --- host/projdb.h: EditManager
projdb* EditManager::getProjdb() { unwritten("EditManager::getProjdb"); }
void EditManager::updateProjdbRec(const Cookie&) { unwritten("EditManager::updateProjdbRec"); }
EditModifier EditManager::makeNewEdit(const Cookie&) { unwritten("EditManager::makeNewEdit"); }
configb& EditManager::ProjOpts() { unwritten("EditManager::ProjOpts"); }

// --- host/projdb.h: get_project_cookie, getFilenameForCookie
Cookie get_project_cookie() { unwritten("get_project_cookie"); }
LightweightString<wchar_t> getFilenameForCookie(const Cookie&, Cookie) { unwritten("getFilenameForCookie"); }

// --- host/project.h: Zr::CurrentProject
int Zr::CurrentProject::getFrameRate(Zr::CurrentProject::Revision) { unwritten("Zr::CurrentProject::getFrameRate"); }
int Zr::CurrentProject::getOutputImageZRFrameRate() { unwritten("Zr::CurrentProject::getOutputImageZRFrameRate"); }

// --- host/device.h: ExtDeviceConfig
ExtDeviceConfig::ExtDeviceConfig() { unwritten("ExtDeviceConfig::ExtDeviceConfig"); }
ExtDeviceConfig::ExtDeviceConfig(const ExtDeviceConfig&) { unwritten("ExtDeviceConfig::ExtDeviceConfig"); }
ExtDeviceConfig& ExtDeviceConfig::operator=(const ExtDeviceConfig&) { unwritten("ExtDeviceConfig::operator="); }
ExtDeviceConfig::~ExtDeviceConfig() { unwritten("ExtDeviceConfig::~ExtDeviceConfig"); }
StringList ExtDeviceConfig::getTapeList() const { unwritten("ExtDeviceConfig::getTapeList"); }
LightweightString<wchar_t> ExtDeviceConfig::getTextName() const { unwritten("ExtDeviceConfig::getTextName"); }
int ExtDeviceConfig::getPortType() const { unwritten("ExtDeviceConfig::getPortType"); }
int ExtDeviceConfig::getInputType() const { unwritten("ExtDeviceConfig::getInputType"); }
int ExtDeviceConfig::getNumConnectedAudioInputs() const { unwritten("ExtDeviceConfig::getNumConnectedAudioInputs"); }
LightweightString<wchar_t> ExtDeviceConfig::getLabelMapping() const { unwritten("ExtDeviceConfig::getLabelMapping"); }
void ExtDeviceConfig::setLastReel(LightweightString<char>) { unwritten("ExtDeviceConfig::setLastReel"); }

// --- host/device.h: ExtDeviceConfigurationManager
ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(int) const {
  unwritten("ExtDeviceConfigurationManager::getConfig");
}
ExtDeviceConfig ExtDeviceConfigurationManager::getConfig(IdStamp) const {
  unwritten("ExtDeviceConfigurationManager::getConfig");
}
int ExtDeviceConfigurationManager::findConfigForName(const LightweightString<wchar_t>&) const {
  unwritten("ExtDeviceConfigurationManager::findConfigForName");
}
void ExtDeviceConfigurationManager::storeDevice(const ExtDeviceConfig&, bool) {
  unwritten("ExtDeviceConfigurationManager::storeDevice");
}
IdStamp ExtDeviceConfigurationManager::DeviceChangedMsgParser(const NotifyMsg&) {
  unwritten("ExtDeviceConfigurationManager::DeviceChangedMsgParser");
}

// --- host/device.h: theConfigurationManager, resetDevices
ExtDeviceConfigurationManager& theConfigurationManager() { unwritten("theConfigurationManager"); }
void resetDevices() { unwritten("resetDevices"); }

// --- host/device.h: LabelMappingSet
LabelMappingSet::LabelMappingSet() { unwritten("LabelMappingSet::LabelMappingSet"); }
bool LabelMappingSet::load(const LightweightString<wchar_t>&) { unwritten("LabelMappingSet::load"); }
