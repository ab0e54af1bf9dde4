#pragma once

#include <optional>
#include <string>
#include <vector>

#include "../../common/Owned.h"
#include "../../common/XmlElement.h"
#include "../../platform/Api.h"
#include "EFDT.h"

class CContentInfo;

/// Parser of the SrcFlow element of an S-TSID: the source flow of an LCT session (ATSC A/331 table
/// A.3.2). An object
/// is for one element: further ones join its lists until Destroy, see SetReplace. An object that is not created is
/// asserted ("m"); results are then empty, 0, false or null.
class VYR_API CSrcFlow : public CXmlElement {
  public:
    /// Extension: a Payload element (ATSC A/331 table A.3.2): how packets of a code point carry the objects.
    /// Empty: not given, or no number (0 to 255 by the standard; whatever is given stands here), no boolean.
    struct SPayload {
        std::optional<long long> codePoint;  ///< of the packets' LCT headers; 0 when not given
        std::optional<long long> formatId;   ///< 1 file, 2 entity, 3 unsigned package, 4 signed package
        std::optional<long long> frag;  ///< how objects are cut: 0 anywhere, 1 at samples, 2 at collections of boxes
        std::optional<bool> order;      ///< whether objects are sent in order; false when not given
        std::optional<long long> srcFecPayloadId;  ///< 0 none, 1 the start offset, 2 as the FEC scheme says
    };

    /// What was parsed.
    struct SSrcFlow {
        bool rt = false;                   ///< whether it carries streaming media
        unsigned int minBuffSize = 0;      ///< kilobytes to buffer; 0xFFFFFFFF: not given; 0 before Parse
        std::string contentId;             ///< of the content information
        std::string aeaId;                 ///< of the content information
        TOwnedArray<CEFDT> efdts;          ///< the last one counts, all were reported
        TOwned<CContentInfo> contentInfo;  ///< the last one; null: none
        std::vector<SPayload> payloads;    ///< Payload, in document order

        /// Extension: what "rt" says by XML Schema; empty: not given, or no boolean.
        std::optional<bool> givenRt;
    };

    /// Copies the record that each EFDT is given; null takes it back. False before Create.
    bool SetCallback(const SEFDTInfoCallback* callback);

    /// Copies the content identifier; true. False, with `out` as it was, before Create.
    bool GetContentId(std::string& out) const;
    /// Emergency alert that the content belongs to (AEAId); empty: none.
    std::string GetAEAId() const;
    /// Whether the session carries streaming media (rt).
    bool GetRT() const;
    /// Number of content ratings, 0 without content info.
    int NumberOfContentRatings() const;
    /// Copies the value of rating `index`; false, with `out` as it was: there is none.
    bool GetContentRating(int index, std::string& out) const;
    /// Record of the last EFDT; null: none. Good until Destroy.
    SEFDTInfo* GetEFDTInfo() const;
    /// What was parsed; null before Create, good until Destroy.
    const SSrcFlow* State() const { return t_Values<SSrcFlow>(); }

  private:
    vyr::SXmlKind t_Kind() const override;
};
