#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "../platform/Api.h"
#include "ParseLLS.h"

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
    /// A text and its language.
    struct SText {
        std::string text;  ///< empty: none
        std::string lang;  ///< BCP 47 tag; empty: none given
    };

    /// One Location element.
    struct SLocation {
        std::string location;   ///< code or shape, as its type has it
        EAEALocationType type;  ///< what kind of location
    };

    /// Required: names are read from the attribute "ServiceName", not from the element's text.
    struct SLiveMedia {
        unsigned short bsid;              ///< broadcast stream of the service
        unsigned short serviceId;         ///< service that carries the coverage
        std::vector<SText> serviceNames;  ///< its names by language
    };

    /// One Media element.
    struct SMedia {
        std::string lang;            ///< language of the file
        std::string mediaDesc;       ///< required: ends up with the attribute "mediaType", or empty
        std::string mediaType;       ///< required: stays empty
        std::string url;             ///< where the file is in the broadcast
        std::string alternateUrl;    ///< where it is on the internet
        std::string contentType;     ///< MIME type
        unsigned int contentLength;  ///< low 32 bits, bytes
        std::string mediaAssoc;      ///< URI of the media that this belongs to
    };

    /// One AEA element: an alert.
    struct SAEAInfo {
        std::string aeaId;                      ///< identifier of the alert
        std::string issuer;                     ///< who issued it
        EAEAAudience audience;                  ///< whom it is for
        EAEAType aeaType;                       ///< alert, update or cancel
        std::string retAEAId;                   ///< the alert that this one updates or cancels
        std::string effective;                  ///< xs:dateTime as it stands
        std::string expires;                    ///< xs:dateTime as it stands
        std::string eventCode;                  ///< code of the event
        std::string eventCodeType;              ///< scheme of the code, such as "SAME"
        std::vector<SText> eventDescs;          ///< EventDesc: short descriptions by language
        std::vector<SLocation> locations;       ///< Location: where
        std::unique_ptr<SLiveMedia> liveMedia;  ///< LiveMedia: the last one; null: none
        std::vector<SText> texts;               ///< AEAText: messages by language
        std::vector<SMedia> media;              ///< Media: files that go with it
        EAEAPriority priority;                  ///< as the table carries it
        bool wakeup;                            ///< wakes receivers
    };
};

/// Parser of the advanced emergency alert table (AEAT, LLS_table_id 4). Required: tables pile up. The
/// alerts of each join those held, until Destroy; see SetReplace. Alerts are addressed from 0 in document order;
/// an index outside the list gives false or 0 and leaves outputs untouched. An object that is not
/// created is asserted ("m").
class VYR_API CParseAEAT : public TCParseLLS {
  public:
    /// Stored, and never called.
    struct SCallback {
        void* userData;                          ///< of the caller
        void (*fn)(void* userData, int result);  ///< of the caller
    };

    /// Extension: what attributes of an alert say by XML Schema; empty: not given, or no boolean.
    struct SGiven {
        std::optional<bool> wakeup;  ///< wakes receivers
    };

    CParseAEAT();
    /// Destroy comes first, else that is asserted.
    ~CParseAEAT() override;

    /// `callback` is copied and may be null.
    bool Create(const CParseAEAT::SCallback* callback);
    /// Frees every alert; the object can be created anew.
    void Destroy() override;

    /// Extension, off by default: what a table brings takes the place of what the last table of its group
    /// left, see TCParseLLS. What was handed out of those is gone then.
    void SetReplace(bool replace);

    /// Number of alerts held.
    int AEACount() const;
    /// Identifiers of the alert, and of the one that it updates or cancels.
    bool GetAEAId(int index, std::string& aeaId, std::string& retAEAId) const;
    /// Who issued the alert.
    bool GetAEAIssuer(int index, std::string& issuer) const;
    /// Whom the alert is for.
    bool GetAEAAudience(int index, EAEAAudience& audience) const;
    /// Whether the alert is new, updates or cancels one.
    bool GetAEAType(int index, EAEAType& type) const;
    /// Priority as the table carries it.
    bool GetAEAPriority(int index, EAEAPriority& priority) const;
    /// Whether the alert is to wake receivers.
    bool AEAWakeup(int index) const;
    /// Begin and end of the alert, xs:dateTime as it stands.
    bool GetAEATimeInfo(int index, std::string& effective, std::string& expires) const;
    /// Code of the event and the scheme that it is from.
    bool GetAEAEventCode(int index, std::string& eventCode, std::string& eventCodeType) const;
    /// Number of event descriptions, one per language.
    int AEAEventDescCount(int index) const;
    /// All of the index-th alert, null outside the list; good until Destroy, or with SetReplace until
    /// the next Parse.
    const SParseAEAT::SAEAInfo* GetAEA(int index) const;
    /// Extension: what the index-th alert gives; likewise.
    const SGiven* Given(int index) const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    void m_DumpAEAT() const;

    SState* m;
};
