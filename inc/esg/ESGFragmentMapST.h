#pragma once

#include <string>
#include <vector>

#include "../platform/Api.h"

/// The store behind every CESGFragmentMap: identifiers of fragments in the order of their coming; one may be
/// there several times. Look-ups take time in proportion to their number. An object that is not created is
/// asserted ("m"). Not thread-safe.
class VYR_API CESGFragmentMapST {
  public:
    CESGFragmentMapST();
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    virtual ~CESGFragmentMapST();
    CESGFragmentMapST(const CESGFragmentMapST&) = delete;
    CESGFragmentMapST& operator=(const CESGFragmentMapST&) = delete;

    /// Forgets all identifiers; the object can be created anew.
    virtual void Destroy();
    /// Makes the store, empty; a second call is asserted: false.
    bool Create();
    /// Appends a copy of the identifier. False: null.
    bool Add(const char* id);
    /// Removes the first of the equal identifiers. False: null, or not there.
    bool Remove(const char* id);
    /// Whether the identifier is there. False: null. Asserts "m != nullptr".
    bool isExisted(const char* id) const;

  private:
    std::vector<std::string>* m;
};
