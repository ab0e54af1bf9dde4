#pragma once

#include "../common/XmlElement.h"
#include "../platform/Api.h"
#include "SGDDParse.h"

/// Parser of a service guide response (OMA BCAST Service Guide): delivery descriptors that were asked for over
/// the interactive channel. The element is looked for among the root, or the node that is parsed, and its
/// following siblings. Required: a second parse adds to the lists of the first, until Destroy; see SetReplace.
class VYR_API CSGResponse : public CXmlElement {
  public:
    /// How long a response holds: the ResponseValidity element.
    struct SResponseValidity {
        virtual ~SResponseValidity() = default;

        unsigned int expirationTime = 0;  ///< expirationTime, as it stands
        int timeWindow = 0;               ///< timeWindow, as it stands
    };

    /// What was parsed.
    struct SSGResponse {
        int status = 0;                                       ///< status, as it stands
        int lastResponseVersion = 0;                          ///< lastResponseVersion
        std::vector<TESGText> supportedVersions;              ///< SupportedVersion, text; empty ones are left out
        TOwnedList<CSGDDParse> descriptors;                   ///< ServiceGuideDeliveryDescriptor
        std::unique_ptr<SResponseValidity> responseValidity;  ///< ResponseValidity, the last; null: none
        TESGText privateExt;                                  ///< PrivateExt, text; null: none
    };

    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    ~CSGResponse() override;

    bool Create() override;
    /// Whether the two-argument Parse takes gzip; false after Create. Asserts "m".
    void SetCompress(bool compressed);

    /// What was parsed; null before Create, good until the next Parse or Destroy.
    const SSGResponse* State() const { return t_Values<SSGResponse>(); }

  private:
    struct SState;

    vyr::SXmlKind t_Kind() const override;
};
