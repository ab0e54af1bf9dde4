#pragma once

#include "../../common/Bytes.h"
#include "../../common/Owned.h"
#include "../MMTParser.h"
#include "../desc/MMTDesc.h"

/// One presentation information document of the MPI table (ISO/IEC 23008-1).
class VYR_API CMMTTblMpiContent : public IMMTParser {
  public:
    /// False: the data ended.
    bool Parse(SItem* item) override;
    /// Logs the fields, at debug priority.
    virtual void Dump() const;
    /// Calls `callback(user, descriptor)` for each descriptor of the content; they stay the content's. True; a
    /// null callback is asserted: false.
    virtual bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user);

    /// PI_content_type_length.
    unsigned char PiContentTypeLen() const { return static_cast<unsigned char>(m_piContentType.Length()); }
    /// PI_content_type, a MIME type, zero-terminated, the content's own; null before Parse.
    const char* PiContentType() const { return m_piContentType.Text(); }
    /// PI_content_name_length.
    unsigned char PiContentNameLen() const { return static_cast<unsigned char>(m_piContentName.Length()); }
    /// PI_content_name, zero-terminated, the content's own; null before Parse.
    const char* PiContentName() const { return m_piContentName.Text(); }
    /// PI_content_length.
    unsigned short PiContentLen() const { return static_cast<unsigned short>(m_piContent.Length()); }
    /// PI_content_byte, the document, with a zero byte behind it, the content's own; null before Parse.
    const char* PiContent() const { return m_piContent.Text(); }

    /// Number of descriptors kept.
    int DescriptorCount() const { return m_arrayDescriptor.Size(); }
    /// The index-th descriptor, the content's own; null for an index outside the range (asserted).
    CMMTDesc* Descriptor(int index) const { return m_arrayDescriptor.At(index); }

  private:
    vyr::CBytes m_piContentType;
    vyr::CBytes m_piContentName;
    TPtrArray<CMMTDesc> m_arrayDescriptor;
    vyr::CBytes m_piContent;
};
