#pragma once

#include <functional>
#include <set>
#include <string>

#include "../platform/Api.h"

/// The store behind every CESGFragmentMap: identifiers of fragments; one may be there several times. It grows
/// with every Add until Remove or Destroy. An object that is not created is asserted ("m"). Not thread-safe.
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
    /// Adds a copy of the identifier. False: null.
    bool Add(const char* id);
    /// Removes one of the equal identifiers. False: null, or not there.
    bool Remove(const char* id);
    /// Whether the identifier is there. False: null. Asserts "m != nullptr".
    bool isExisted(const char* id) const;

  private:
    using TIds = std::multiset<std::string, std::less<>>;

    TIds* m;
};
