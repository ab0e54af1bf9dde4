#pragma once

#include <memory>

#include "LocationUnit.h"

/// Packet id of a location of type 0 or 1.
struct SInternalLocationInfo {
    unsigned int packetId;  ///< packet_id
};

/// What callers are told about a location: its type, 0 or 1, and the packet id.
struct SLocationInfo {
    unsigned int locationType;   ///< location_type
    SInternalLocationInfo info;  ///< of types 0 and 1
};

/// Where a table or an asset is delivered: MMT_general_location_info of ISO/IEC 23008-1.
class VYR_API CMMTElementLocation : public IMMTParser {
  public:
    CMMTElementLocation() = default;
    ~CMMTElementLocation() override;
    CMMTElementLocation(const CMMTElementLocation&) = delete;
    CMMTElementLocation& operator=(const CMMTElementLocation&) = delete;

    /// False: a type above 0x0C, or the data ended; there is no unit then.
    bool Parse(SItem* item) override;
    /// Logs type and unit, at debug priority.
    virtual void Dump() const;

    /// location_type as read; 0 before Parse.
    unsigned int LocationType() const { return m_locationType; }
    /// The unit of that type, the element's own; null when there is none.
    CLocationUnitBase* Location() const { return m_pLocation.get(); }

  private:
    /// Lets go of a unit; those of type 7, which have nothing of their own, are one and the same.
    struct SRelease {
        void operator()(CLocationUnitBase* unit) const;
    };

    unsigned int m_locationType = 0;
    std::unique_ptr<CLocationUnitBase, SRelease> m_pLocation;
};
