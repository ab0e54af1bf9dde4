#pragma once

#include "MMTDescPayload.h"

/// Low delay consumption (ISO/IEC 23008-1), tag 14: what a receiver must know to play media units before their
/// metadata arrives.
class VYR_API CMMTDescLowDelay : public CMMTDescPayload {
  public:
    static constexpr unsigned int k_tag = 14;  ///< descriptor_tag

    /// The fields, each as far as the length reaches.
    struct SLowDelay {
        std::optional<unsigned int> basePresentationTimeOffset;  ///< base_presentation_time_offset
        std::optional<bool> codingDependencyStructureFlag;       ///< coding_dependency_structure_flag
        std::optional<unsigned short> periodOfIntrapicture;      ///< period_of_intrapicture, with the flag
        std::optional<unsigned int> defaultSampleDuration;       ///< default_sample_duration
        std::optional<unsigned int> defaultSampleSize;           ///< default_sample_size
        std::optional<unsigned int> defaultSampleFlags;          ///< default_sample_flags
    };

    CMMTDescLowDelay() : CMMTDescPayload("CMMTDescLowDelay", k_tag) {}
    void Dump() const override;

    /// The fields, each as far as the length reaches.
    const SLowDelay& Fields() const { return m_fields; }

    /// Reads the fields alone, which are all that the item has: so the low delay consumption message carries them.
    void ParseFields(vyr::CBitReader& reader);

  private:
    void t_ParsePayload(vyr::CBitReader& reader) override;

    SLowDelay m_fields;
};
