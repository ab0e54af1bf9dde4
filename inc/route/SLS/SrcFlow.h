#pragma once

#include <string>

#include "../../common/CoreOS/PtrArray.h"
#include "../../common/ParseXML.h"
#include "../../platform/Api.h"
#include "EFDT.h"

class CContentInfo;

/// Parser of the SrcFlow element of an S-TSID: the source flow of an LCT session (ATSC A/331 table
/// A.3.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An object that is not created is
/// asserted ("m"); results are then empty, 0, false or null.
class VYR_API CSrcFlow : public XMLBase {
  public:
    /// What was parsed.
    struct SSrcFlow {
        SSrcFlow();
        ~SSrcFlow();
        SSrcFlow(const SSrcFlow&) = delete;
        SSrcFlow& operator=(const SSrcFlow&) = delete;

        bool rt;                    ///< whether it carries streaming media
        unsigned int minBuffSize;   ///< kilobytes to buffer; 0xFFFFFFFF: not given
        std::string contentId;      ///< of the content information
        std::string aeaId;          ///< of the content information
        CContentInfo* contentInfo;  ///< the last one, owned; null: none
        CCPtrArray efdts;           ///< of CEFDT; the last one counts, all were reported
    };

    CSrcFlow();
    ~CSrcFlow() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the record that each EFDT is given; null takes it back. False before Create.
    bool SetCallback(const SEFDTInfoCallback* callback);

    /// Copies the content identifier; true. False, with `out` as it was, before Create.
    bool GetContentId(std::string& out) const;
    std::string GetAEAId() const;
    bool GetRT() const;
    int NumberOfContentRatings() const;
    /// Copies the value of rating `index`; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Record of the last EFDT; null: none. Good until Destroy.
    SEFDTInfo* GetEFDTInfo() const;
    /// What was parsed; null before Create, good until Destroy.
    const SSrcFlow* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;

    static void sm_CbContentInfo(CSrcFlow* flow, void* cur);
    static void sm_CbEFDT(CSrcFlow* flow, void* cur);

    SState* m;
};
