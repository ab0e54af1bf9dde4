#pragma once

#include "../platform/Api.h"
#include "ESGFragmentMapST.h"

/// The one store, and the number of created handles on it.
struct VYR_API SESGFragmentMap {
    static CESGFragmentMapST refMap;  ///< the store, created while handles hold it
    static int refMapCnt;             ///< handles that hold it
};

/// Handle on the process-wide record of known fragments of the service guide, for the caller's own use: the
/// parsers do not fill it. The first handle that is created makes the store, empty, and the last that is
/// destroyed lets go of it. A handle that is not created is asserted ("m"): false. Operations of
/// handles may come from several threads, each handle from one at a time. Out of memory is false, with a line in
/// the log, and changes nothing.
class VYR_API CESGFragmentMap {
  public:
    CESGFragmentMap();
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    virtual ~CESGFragmentMap();
    CESGFragmentMap(const CESGFragmentMap&) = delete;
    CESGFragmentMap& operator=(const CESGFragmentMap&) = delete;

    /// Lets go of all fragments. Asserts that the map was created.
    virtual void Destroy();
    /// A second call is asserted: false.
    bool Create();
    /// Records an identifier, once more where it is known already. False: null.
    bool Add(const char* id);
    /// Forgets one record of an identifier, the oldest. False: null, or unknown.
    bool Remove(const char* id);
    /// Whether an identifier is known. False: null.
    bool isExisted(const char* id) const;

  private:
    struct SHandle;

    SHandle* m;
};
