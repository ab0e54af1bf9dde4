#pragma once

#include <string>

#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

class CMediaInfo;

/// Parser of the ContentInfo element of an S-TSID: what a source flow carries (ATSC A/331 table A.3.2).
/// An object that is not created is asserted ("m"); results are then empty, 0 or false.
class VYR_API CContentInfo : public XMLBase {
  public:
    /// What was parsed.
    struct SContentInfo {
        SContentInfo();
        ~SContentInfo();
        SContentInfo(const SContentInfo&) = delete;
        SContentInfo& operator=(const SContentInfo&) = delete;

        std::string contentId;  ///< repId of the media information, else the text of the element
        std::string aeaId;      ///< emergency alert that the content belongs to; empty: none
        CMediaInfo* mediaInfo;  ///< the last one, owned; null: none
    };

    CContentInfo();
    ~CContentInfo() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the content identifier; true. False, with `out` as it was, before Create.
    bool GetContentId(std::string& out) const;
    std::string GetAEAId() const;
    int NumberOfContentRating() const;
    /// Copies the value of rating `index` of the media information; false, with `out` as it was: none.
    bool GetContentRating(int index, std::string& out) const;
    /// What was parsed; null before Create, good until Destroy.
    const SContentInfo* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbAEAMedia(CContentInfo* info, void* node);
    static void sm_CbMediaInfo(CContentInfo* info, void* cur);

    SState* m;
};
