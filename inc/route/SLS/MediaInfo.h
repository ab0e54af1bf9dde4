#pragma once

#include <string>

#include "../../common/CoreOS/PtrArray.h"
#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

/// Parser of the MediaInfo element of an S-TSID: what a media component is (ATSC A/331 table A.3.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An
/// object that is not created is asserted ("m"); results are then 0 or false.
class VYR_API CMediaInfo : public XMLBase {
  public:
    enum EContentType { CONTENT_OTHER = 0, CONTENT_AUDIO = 1, CONTENT_VIDEO = 2, CONTENT_SUBTITLES = 3 };

    /// What was parsed.
    struct SMediaInfo {
        SMediaInfo();

        bool startUp;               ///< whether the service can be shown without other components of the type
        std::string lang;           ///< BCP 47; empty: not given
        EContentType contentType;   ///< CONTENT_OTHER: not given, or no name that is known
        std::string repId;          ///< id of the DASH representation; empty: not given
        CCPtrArray contentRatings;  ///< of CContentRating, owned
    };

    CMediaInfo();
    ~CMediaInfo() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the id of the DASH representation; true. False, with `out` as it was, before Create.
    bool GetRepId(std::string& out) const;
    int NumberOfContentRating() const;
    /// Copies the value of rating `index`, from 0; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Logs what was parsed, at debug priority.
    void Dump() const;
    /// What was parsed; null before Create, good until Destroy.
    const SMediaInfo* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbContentRating(CMediaInfo* info, void* cur);

    SState* m;
};
