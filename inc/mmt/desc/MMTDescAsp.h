#pragma once

#include "MMTDescPayload.h"

/// Audio stream properties of assets (ATSC A/331 7.2.3), tag 9.
class VYR_API CMMTDescAsp : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 9;  ///< descriptor_tag

    /// One presentation of an audio asset.
    struct SPresentation {
        unsigned char id;                                       ///< presentation_id
        bool interactivityEnabled;                              ///< interactivity_enabled
        std::optional<unsigned int> profileLevelIndication;     ///< 8 or 24 bits, when flagged
        std::optional<unsigned int> audioChannelConfig;         ///< 8 or 24 bits, when flagged
        std::optional<unsigned char> audioRenderingIndication;  ///< when flagged
        std::vector<std::string_view> languages;                ///< BCP 47, when flagged
        std::vector<unsigned char> accessibility;               ///< one for each language, when flagged
        std::optional<unsigned char> role;                      ///< flagged with accessibility
        std::string_view label;                                 ///< when flagged
        std::vector<unsigned char> auxStreamIds;                ///< with multi-stream information
    };
    /// A stream that the main stream may be played with.
    struct SAuxiliaryStream {
        bool deliveryMethod;              ///< delivery_method
        unsigned char auxiliaryStreamId;  ///< auxiliary_stream_id, 7 bits
    };
    /// Multi-stream information: the place of a stream in its bundle.
    struct SMultiStream {
        bool thisIsMainStream;                           ///< this_is_main_stream
        unsigned char thisStreamId;                      ///< this_stream_id, 7 bits
        unsigned char bundleId;                          ///< bundle_id, 7 bits
        std::vector<SAuxiliaryStream> auxiliaryStreams;  ///< of a main stream
    };
    /// A moment: seconds and milliseconds as they stand.
    struct STime {
        unsigned int seconds;         ///< 32 bits
        unsigned short milliseconds;  ///< 10 bits
    };
    /// One audio asset.
    struct SAsset {
        std::string_view assetId;                  ///< asset_id
        std::string_view codecCode;                ///< four characters, such as "ac-4"
        std::vector<SPresentation> presentations;  ///< in order
        std::optional<SMultiStream> multiStream;   ///< with multi_stream_info_present
        std::optional<STime> emergencyStart;       ///< with emergency_info_time_present, when flagged
        std::optional<STime> emergencyEnd;         ///< likewise
    };

    CMMTDescAsp() : CMMTDescPayload("CMMTDescAsp", k_tag) {}
    void Dump() const override;

    /// In order.
    const std::vector<SAsset>& Assets() const { return m_assets; }

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    std::vector<SAsset> m_assets;
};
