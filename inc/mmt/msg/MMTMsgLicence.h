#pragma once

#include "../../common/Owned.h"
#include "../element/MMTElementAssetId.h"
#include "MMTMsgPayload.h"

/// Common part of the two messages about licences (ISO/IEC 23008-1): a list of assets, each with the bytes of a
/// licence, which are the DRM system's own.
class VYR_API CMMTMsgLicence : public CMMTMsgPayload {
  public:
    /// The licence of one asset.
    struct SLicence {
        CMMTElementAssetId assetId;  ///< of the asset
        vyr::CBytes data;            ///< not held when it does not fit in the message
    };

    void Dump() const override;

    /// Number of licences whose asset id is there.
    int LicenceCount() const { return m_arrayLicence.Size(); }
    /// The index-th licence, the message's own; null for an index outside the range (asserted).
    const SLicence* Licence(int index) const { return m_arrayLicence.At(index); }

  protected:
    /// Of the request or of the response.
    explicit CMMTMsgLicence(EClassType classType);
    /// Reads header and list; `format` as for t_ParseHeader.
    bool t_ParseLicences(SItem* item, const char* format);

  private:
    TPtrArray<SLicence> m_arrayLicence;
};
