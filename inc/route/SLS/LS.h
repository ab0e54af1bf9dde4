#pragma once

#include <memory>
#include <string>

#include "../../common/ATSC3TimeUtility.h"
#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"

class CSrcFlow;
struct SEFDTInfo;

/// Parser of the LS element of an S-TSID: one LCT session (ATSC A/331 table 7.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An object that is not
/// created is asserted ("m"); without a source flow results are empty, 0, false or null.
class VYR_API CLS : public CXmlElement {
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
        unsigned int tsi = 0;      ///< transport session identifier; 0xFFFFFFFF: not given; 0 before Parse
        unsigned int bw = 0;       ///< maximum bandwidth, kbit/s; likewise
        long long startTime = -1;  ///< epoch seconds, see TimeUtility::ConvertDateTime2Epoch; -1: not given, or behind
                                   ///< 4,096 times of a parse
        long long endTime = -1;    ///< likewise
        TOwnedArray<CSrcFlow> srcFlows;  ///< the last one counts, the EFDTs of all were reported

        // Extension: the times as they are given.
        std::unique_ptr<SGivenTime> givenStartTime;  ///< xs:dateTime; null: not given
        std::unique_ptr<SGivenTime> givenEndTime;    ///< likewise
    };

    /// Copies the record; null takes it back. False before Create.
    bool SetCallback(const SCallback* callback);

    /// Transport session identifier; 0xFFFFFFFF: not given; 0 before Parse.
    unsigned int TSI() const;
    /// Copies the content identifier; true. False, with `out` empty: no source flow.
    bool GetContentId(std::string& out) const;
    /// As CSrcFlow::GetAEAId; empty without a source flow.
    std::string GetAEAId() const;
    /// As CSrcFlow::GetRT; false without a source flow.
    bool GetRT() const;
    /// As CSrcFlow's; 0 without a source flow.
    int NumberOfContentRatings() const;
    /// Copies the value of rating `index`; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Record of the last EFDT of the source flow; null: none. Good until Destroy.
    SEFDTInfo* GetEFDTInfo() const;
    /// What was parsed; null before Create, good until Destroy.
    const SLS* State() const { return t_Values<SLS>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
