// Lock parameters of a signature.
#include "varnpdf/PdfLockInfo.h"

#include <utility>

CPdfLockInfo::CPdfLockInfo() = default;
CPdfLockInfo::CPdfLockInfo(const CPdfLockInfo&) = default;
CPdfLockInfo& CPdfLockInfo::operator=(const CPdfLockInfo&) = default;
CPdfLockInfo::~CPdfLockInfo() = default;

void CPdfLockInfo::set_digestvalue(std::string value) { digestvalue = std::move(value); }

bool CPdfLockInfo::get_use_locking() const { return use_locking == 1; }
void CPdfLockInfo::set_use_locking(int use) { use_locking = use; }
transform_methods CPdfLockInfo::get_transformmethod() const { return transformmethod; }
void CPdfLockInfo::set_transformmethod(transform_methods method) { transformmethod = method; }
int CPdfLockInfo::get_transformparamsobjid() const { return transformparamsobjid; }
void CPdfLockInfo::set_transformparamsobjid(int objid) { transformparamsobjid = objid; }
access_permission CPdfLockInfo::get_pvalue() const { return pvalue; }
void CPdfLockInfo::set_pvalue(access_permission value) { pvalue = value; }
action_type CPdfLockInfo::get_actionvalue() const { return actionvalue; }
void CPdfLockInfo::set_actionvalue(action_type value) { actionvalue = value; }
digest_method CPdfLockInfo::get_digestalgo() const { return digestalgo; }
void CPdfLockInfo::set_digestalgo(digest_method algo) { digestalgo = algo; }
std::string CPdfLockInfo::get_digestvalue() const { return digestvalue; }
int CPdfLockInfo::get_objid_data() const { return objid_data; }
void CPdfLockInfo::set_objid_data(int objid) { objid_data = objid; }
