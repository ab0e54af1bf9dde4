#pragma once

#include <optional>
#include <string_view>
#include <vector>

#include "../../common/Bytes.h"
#include "MMTDesc.h"

namespace vyr {
class CBitReader;
}

/// Base of the descriptors whose payload is kept: read inside the bounds of their own length. Fields that do
/// not fit in it are absent, a group of fields that does not fit whole is absent as one, and a list ends
/// before its first entry whose head does not fit. Every std::string_view of their records lies in RawData():
/// it is not zero-terminated, and it lives until the next Parse or the descriptor's end.
class VYR_API CMMTDescPayload : public CMMTDesc {
  public:
    /// Leaves the cursor at the end that the length names. False: another tag, a length that runs past the
    /// item (which stays valid), or a cursor inside a byte.
    bool Parse(SItem* item) override;

    /// The payload behind the length, whatever was understood of it; null before Parse.
    const unsigned char* RawData() const { return m_raw.Data(); }
    /// Its length in bytes; 0 before Parse.
    unsigned int RawLength() const { return m_raw.Length(); }

  protected:
    /// `name` is the class's, for the log.
    CMMTDescPayload(const char* name, unsigned int tag);

    /// Whether the class reads descriptors of this tag.
    virtual bool t_Takes(unsigned int tag) const;
    /// Reads the payload into the object's records in place of earlier ones.
    virtual void t_ParsePayload(vyr::CBitReader& reader) = 0;

  private:
    const char* m_name;
    unsigned int m_wanted;
    vyr::CBytes m_raw;
};
