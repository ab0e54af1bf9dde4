#pragma once

#include <optional>
#include <string>
#include <vector>

#include "lls/ParseLLS.h"
#include "platform/Api.h"

/// Audience of an alert. A value that begins with the word counts as the word.
enum EAEAAudience : int {
    AEA_AUDIENCE_UNKNOWN = 0,
    AEA_AUDIENCE_PUBLIC = 1,      ///< "public"
    AEA_AUDIENCE_RESTRICTED = 2,  ///< "restricted"
    AEA_AUDIENCE_PRIVATE = 3      ///< "private"
};

/// Kind of an alert, matched likewise.
enum EAEAType : int {
    AEA_TYPE_UNKNOWN = 0,
    AEA_TYPE_ALERT = 1,   ///< "alert"
    AEA_TYPE_UPDATE = 2,  ///< "update"
    AEA_TYPE_CANCEL = 3   ///< "cancel"
};

/// Kind of a location, matched likewise.
enum EAEALocationType : int {
    AEA_LOCATION_UNKNOWN = 0,
    AEA_LOCATION_FIPS = 1,     ///< "FIPS"
    AEA_LOCATION_SGC = 2,      ///< "SGC"
    AEA_LOCATION_POLYGON = 3,  ///< "polygon"
    AEA_LOCATION_CIRCLE = 4    ///< "circle"
};

/// Priority of an alert as the table carries it: 0 (minor) to 4 (maximum), or any other number.
enum EAEAPriority : int {};

/// Records of the advanced emergency alert table (ATSC A/331 6.5). Texts that the table does not give
/// are empty, numbers 0.
struct SParseAEAT {
    struct SText {
        std::string text;
        std::string lang;
    };

    struct SLocation {
        std::string location;
        EAEALocationType type;
    };

    /// Required: names are read from the attribute "ServiceName", not from the element's text.
    struct SLiveMedia {
        unsigned short bsid;
        unsigned short serviceId;
        std::vector<SText> serviceNames;
    };

    struct SMedia {
        std::string lang;
        std::string mediaDesc;  ///< required: ends up with the attribute "mediaType", or empty
        std::string mediaType;  ///< required: stays empty
        std::string url;
        std::string alternateUrl;
        std::string contentType;
        unsigned int contentLength;  ///< low 32 bits, bytes
        std::string mediaAssoc;
    };

    struct SAEAInfo {
        std::string aeaId;
        std::string issuer;
        EAEAAudience audience;
        EAEAType aeaType;
        std::string retAEAId;  ///< the alert that this one updates or cancels
        EAEAPriority priority;
        bool wakeup;
        std::string effective;  ///< xs:dateTime as it stands
        std::string expires;
        std::string eventCode;
        std::string eventCodeType;
        std::vector<SText> eventDescs;
        std::vector<SLocation> locations;
        std::optional<SLiveMedia> liveMedia;
        std::vector<SText> texts;
        std::vector<SMedia> media;
    };
};

/// Parser of the advanced emergency alert table (AEAT, LLS_table_id 4). Required: tables pile up; only
/// Destroy lets go, so callers use one object per table. Alerts are addressed from 0 in document order;
/// an index outside the list gives false or 0 and leaves outputs untouched. An object that is not
/// created is asserted ("m").
class VYR_API CParseAEAT : public TCParseLLS {
  public:
    /// Stored, and never called.
    struct SCallback {
        void* userData;
        void (*fn)(void* userData, int result);
    };

    CParseAEAT();
    /// Destroy comes first, else that is asserted.
    ~CParseAEAT() override;

    /// `callback` is copied and may be null.
    bool Create(const CParseAEAT::SCallback* callback);
    void Destroy() override;

    int AEACount() const;
    bool GetAEAId(int index, std::string& aeaId, std::string& retAEAId) const;
    bool GetAEAIssuer(int index, std::string& issuer) const;
    bool GetAEAAudience(int index, EAEAAudience& audience) const;
    bool GetAEAType(int index, EAEAType& type) const;
    bool GetAEAPriority(int index, EAEAPriority& priority) const;
    bool AEAWakeup(int index) const;
    bool GetAEATimeInfo(int index, std::string& effective, std::string& expires) const;
    bool GetAEAEventCode(int index, std::string& eventCode, std::string& eventCodeType) const;
    int AEAEventDescCount(int index) const;
    /// All of the index-th alert, null outside the list; good until Destroy.
    const SParseAEAT::SAEAInfo* GetAEA(int index) const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    bool t_CreateCallback();
    bool m_ProcessParseAEAT(void* root);
    void m_DumpAEAT() const;

    static void sm_CbAEA(CParseAEAT* parser, void* node);
    static void sm_CbHeader(CParseAEAT* parser, void* node);
    static void sm_CbEventCode(CParseAEAT* parser, void* node);
    static void sm_CbEventDesc(CParseAEAT* parser, void* node);
    static void sm_CbLocation(CParseAEAT* parser, void* node);
    static void sm_CbAEAText(CParseAEAT* parser, void* node);
    static void sm_CbLiveMedia(CParseAEAT* parser, void* node);
    static void sm_CbServiceName(CParseAEAT* parser, void* node);
    static void sm_CbMedia(CParseAEAT* parser, void* node);

    SState* m;
};
