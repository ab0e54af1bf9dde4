#pragma once

#include <string>

#include "../../common/CoreOS/PtrArray.h"
#include "../../common/ParseXML.h"
#include "../../platform/Api.h"

class CSrcFlow;
struct SEFDTInfo;

/// Parser of the LS element of an S-TSID: one LCT session (ATSC A/331 table 7.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An object that is not
/// created is asserted ("m"); without a source flow results are empty, 0, false or null.
class VYR_API CLS : public XMLBase {
  public:
    /// Told of each EFDT of the session while it is parsed, inside the Parse of the whole S-TSID and on its
    /// thread: the EFDT is complete, and the session's number known, but neither is part of the S-TSID yet.
    /// The record belongs to the parser, and is good until the parser of the whole S-TSID is destroyed, or
    /// its Parse fails or throws. What it may call: see XMLBase.
    struct SCallback {
        void* context;                                                 ///< handed back to fn
        void (*fn)(void* context, unsigned int tsi, SEFDTInfo* info);  ///< null: nobody is told
    };

    /// What was parsed.
    struct SLS {
        SLS();

        unsigned int tsi;     ///< transport session identifier; 0xFFFFFFFF: not given
        unsigned int bw;      ///< maximum bandwidth, kbit/s; 0xFFFFFFFF: not given
        long long startTime;  ///< epoch seconds, see TimeUtility::ConvertDateTime2Epoch; -1: not given
        long long endTime;    ///< likewise
        CCPtrArray srcFlows;  ///< of CSrcFlow, owned; the last one counts, the EFDTs of all were reported
    };

    CLS();
    ~CLS() override;

    bool Create() override;
    void Destroy() override;
    /// Copies the record; null takes it back. False before Create.
    bool SetCallback(const SCallback* callback);

    unsigned int TSI() const;
    /// Copies the content identifier; true. False, with `out` empty: no source flow.
    bool GetContentId(std::string& out) const;
    std::string GetAEAId() const;
    bool GetRT() const;
    int NumberOfContentRatings() const;
    /// Copies the value of rating `index`; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Record of the last EFDT of the source flow; null: none. Good until Destroy.
    SEFDTInfo* GetEFDTInfo() const;
    /// What was parsed; null before Create, good until Destroy.
    const SLS* State() const;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParse(void* root) override;
    const CSrcFlow* m_SrcFlow() const;

    static void sm_CbSrcFlow(CLS* ls, void* cur);
    static void sm_CbEFDTInfo(void* context, SEFDTInfo* info);

    SState* m;
};
