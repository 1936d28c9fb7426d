// CPdfLockInfo: what a signature locks (ISO 32000-2 12.7.5.5, 12.8.2).
#pragma once

#include <string>

#include "varnpdf/export.h"

enum transform_methods { eDocMDP = 1, eUR = 2, eFieldMDP = 3, eIdentity = 4 };
enum digest_method { eMD5 = 1, eSHA1 = 2 };
enum action_type { eAll = 1, eInclude = 2, eExclude = 3 };
enum access_permission { eNoChanges = 1 };

/// Lock parameters of a signature being prepared. Every accessor reads or writes one field. Copying and
/// `get_digestvalue` throw std::bad_alloc without memory.
class VARNPDF_EXPORT CPdfLockInfo {
public:
    CPdfLockInfo();
    CPdfLockInfo(const CPdfLockInfo&);
    CPdfLockInfo& operator=(const CPdfLockInfo&);
    virtual ~CPdfLockInfo();

    /// True only for exactly 1.
    [[nodiscard]] bool get_use_locking() const;
    void set_use_locking(int use);
    [[nodiscard]] transform_methods get_transformmethod() const;
    void set_transformmethod(transform_methods method);
    /// Object number of the transform parameters.
    [[nodiscard]] int get_transformparamsobjid() const;
    void set_transformparamsobjid(int objid);
    [[nodiscard]] access_permission get_pvalue() const;
    void set_pvalue(access_permission value);
    [[nodiscard]] action_type get_actionvalue() const;
    void set_actionvalue(action_type value);
    [[nodiscard]] digest_method get_digestalgo() const;
    void set_digestalgo(digest_method algo);
    [[nodiscard]] std::string get_digestvalue() const;
    void set_digestvalue(std::string value);
    /// Object number named by /Data of the signature reference.
    [[nodiscard]] int get_objid_data() const;
    void set_objid_data(int objid);

private:
    int use_locking = 0;
    transform_methods transformmethod = eFieldMDP;
    int transformparamsobjid = 0;
    digest_method digestalgo = eMD5;
    std::string digestvalue;
    int objid_data = 0;
    action_type actionvalue = eAll;
    access_permission pvalue = eNoChanges;
};
