#pragma once

#include "../platform/Api.h"

/// Handle on the process-wide rating store, which the caller fills from a rating region table and then
/// asks for the abbreviation of a rating. The first handle's Create makes the store, the last one's
/// Destroy frees it with every region. Operations of handles may come from several threads, each handle from
/// one at a time; "last" is the last of all threads, so that one region is filled by one thread. Out of memory is
/// false, with a line in the log, and changes nothing.
/// Regions grow with every set call until Remove or the end of the store; see SetReplace.
///
/// A region is filled in order: Add, SetRegionIdText, and for each dimension SetDimension, SetDimTitle,
/// and for each rating SetRatingVal, SetRatingValAbbrev, SetRatingValStr. A text is a pair of
/// zero-terminated strings, copied; what they stand for (language and text, say) is the caller's
/// choice. A handle that is not created ("m"), a key without a region ("region"), a missing dimension
/// ("dimension") or rating ("rating") and a null string ("first && second") are asserted: false.
class VYR_API CRRTMap {
  public:
    CRRTMap();
    /// Destroy comes first, else "!m" is asserted.
    ~CRRTMap();
    CRRTMap(const CRRTMap&) = delete;
    CRRTMap& operator=(const CRRTMap&) = delete;

    /// Joins the store, making it if this is the first handle.
    bool Create();
    /// Leaves the store; the last handle frees it.
    void Destroy();

    /// Extension of this handle, off by default: Add puts an empty region in the place of one that is there,
    /// so that a table filled in again takes the place of the last. There are 256 keys; what stands under one is
    /// what its caller has filled in.
    void SetReplace(bool replace);
    /// Makes a region under the key; one that is there already stays.
    bool Add(unsigned char key, unsigned int regionIdentifier);
    /// Frees the region under the key.
    bool Remove(unsigned char key);

    /// Adds a text to the region.
    bool SetRegionIdText(unsigned char key, char* first, char* second);
    /// Adds a dimension to the region; it is the last dimension from now on.
    bool SetDimension(unsigned char key, unsigned int index, bool flag);
    /// Adds a title to the last dimension.
    bool SetDimTitle(unsigned char key, char* first, char* second);
    /// Adds a rating to the last dimension; it is the last rating from now on.
    bool SetRatingVal(unsigned char key, unsigned int value);
    /// Adds an abbreviation to the last rating.
    bool SetRatingValAbbrev(unsigned char key, char* first, char* second);
    /// Adds a rating string to the last rating.
    bool SetRatingValStr(unsigned char key, char* first, char* second);

    /// Looks in the region's dimensions of that index for the first rating string whose two texts equal
    /// `first` and `second`, and calls `fn` with the second text of the abbreviation at the same place.
    /// True when it did; false without a match, or when no abbreviation stands there (asserted,
    /// "abbreviation"). The call comes on this thread, outside the store's lock, and last: it may change
    /// and destroy whatever it likes. The text is the store's, and good until the region changes or goes; it is not
    /// to be written.
    bool GetProgramRating(unsigned int key, unsigned int dimension, char* first, char* second,
                          void (*fn)(void* userData, char* text), void* userData);

  private:
    struct SHandle;

    SHandle* m;
};
