#pragma once

#include "MMTMsg.h"

class CCPtrArray;
class CMMTTblSi;
class CMMTUsbd;
class CRSAT;

/// ATSC 3.0 signalling message (ATSC A/331 7.2.3.1), message_id 0x8100: one piece of service-layer signalling,
/// handed to the parser of its kind. Made for one
/// message; descriptors, USBD and RSAT of a second one in the same object join those of the first.
class VYR_API CMMTMsgAtsc3 : public CMMTMsg {
  public:
    static constexpr unsigned short k_messageId = 0x8100;  ///< message_id

    /// atsc3_message_content_type of the contents that are read.
    enum EContentType {
        CONTENT_TYPE_USBD = 1,
        CONTENT_TYPE_MPD = 2,
        CONTENT_TYPE_VSP = 5,
        CONTENT_TYPE_CAPTION = 8,
        CONTENT_TYPE_ASP = 9,
        CONTENT_TYPE_RSAT = 11,
        CONTENT_TYPE_SP = 12,
        CONTENT_TYPE_LICENSE_URL = 13
    };
    /// atsc3_message_content_compression that is undone.
    static constexpr unsigned int k_gzip = 2;
    /// Largest compressed content, and largest size that one inflates to: bytes.
    static constexpr unsigned int k_maxContent = 0x80000;

    CMMTMsgAtsc3();
    ~CMMTMsgAtsc3() override;

    /// False: the framing is wrong, or a compressed content is shorter than 2 bytes or longer than k_maxContent.
    /// What a content's own parser makes of it does not count; a content that cannot be inflated is taken as it
    /// stands.
    bool Parse(SItem* item) override;
    void Dump() const override;
    /// True: there is nothing to report.
    bool Process() override;
    /// Calls `callback` for the descriptors: audio, video, caption, security properties, licence URLs. True; a null
    /// callback is asserted: false.
    bool GetDescriptors(void (*callback)(void* user, CMMTDesc* descriptor), void* user) override;

    /// Calls `callback(user, data, length)` once with the content, which stays the message's: `data` is null for the
    /// contents that are not kept, and when the content is empty or not whole. The data are good until the next Parse,
    /// which is asserted inside the callback ("!m_visiting") and does nothing. True; a null callback is asserted:
    /// false.
    bool GetContent(void (*callback)(void* user, unsigned char* data, unsigned int length), void* user) const;
    /// service_id.
    unsigned short ServiceId() const;
    /// atsc3_message_content_type; any value.
    unsigned short ContentType() const;
    /// atsc3_message_content_version.
    unsigned char ContentVersion() const;
    /// atsc3_message_content_compression as read.
    unsigned char ContentCompression() const;
    /// URI; null: none.
    const char* Uri() const;
    /// atsc3_message_content_length; after an inflation that succeeded, the inflated length: bytes.
    unsigned int ContentLength() const;

    /// The USBD, filled by content type 1; created with the message and gone with it. Null, as the next two, and
    /// the other results 0 or null, when memory was out for the constructor; Parse tries again.
    CMMTUsbd* UserServiceBundleDescription();
    /// The RSAT, filled by content type 11; likewise.
    CRSAT* RSAT();
    /// An SI table for the caller's use; Parse does not fill it.
    CMMTTblSi* SITable();
    /// The USBD's global service id (not copied; null: none) and the message's service id; true. Null is asserted:
    /// false.
    bool GetServiceInfo(char** globalServiceId, unsigned short& serviceId) const;

  private:
    struct SState;

    bool m_Create();
    bool m_ParseCompressed(SItem* item);
    void m_ParseContent(SItem* item, bool asItStands);
    bool m_CopyContent(SItem* item, bool evenEmpty);
    void m_ParseDescriptors(SItem* item, CCPtrArray& array);

    SState* m;
};
