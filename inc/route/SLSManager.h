#pragma once

#include <list>
#include <set>
#include <string>
#include <utility>

#include "../platform/Api.h"

class CROUTEUsbd;
class CRSAT;
class CSTSID;
struct SEFDTInfo;
struct SMPDInfo;

/// Entry point for the service-layer signalling (SLS; ATSC A/331 clause 7) of a ROUTE service. Takes
/// buffers that hold any mix of SLS documents, in a multipart package or not, finds each document by its
/// tags, parses it, and reports what it found through the caller's callbacks, all inside Parse. Each
/// document stands alone: one that is broken is logged, and the others are reported.
///
/// Life: construct, Create, Parse any number of times, Destroy, delete. One thread at a time. Out of memory is a
/// failed Create, or a document that is not reported, with a line in the log. See docs/using.md.
class VYR_API CSLSManager {
  public:
    /// The session that carried a buffer, as its caller knows it. The manager reads `sessionId` and hands
    /// the whole record on.
    struct SSessionInfo {
        unsigned int sessionId;  ///< the caller's number of the session
        unsigned int sIpAddr;    ///< source address, host byte order
        unsigned int dIpAddr;    ///< destination address, host byte order
        unsigned short dPort;    ///< destination port
    };

    /// A user service bundle description, as CROUTEUsbd answers for it.
    struct SUSBDInfo {
        std::list<std::string> basePatterns;  ///< of all unicast application services, in document order
        std::string globalServiceId;          ///< empty: not given
        unsigned short serviceId;             ///< 65,535: not given
        unsigned short linkServiceId;         ///< of the linked service; 65,535: no service linkage
        int serviceCategory;                  ///< of the linked service; -1: no service linkage
        int linkageType;                      ///< -1: no service linkage
        std::string activationTime;           ///< begin of the linkage, xs:dateTime; empty: not given
        std::string deActivationTime;         ///< end of the linkage, likewise
        bool serviceStatus;                   ///< whether the service is on
    };

    /// One LCT session of an S-TSID, and the ROUTE session it belongs to, as CSTSID answers for them.
    struct SLctSession {
        unsigned short bsid;    ///< 65,535 always
        unsigned int sIpAddr;   ///< source address, host byte order; 0xFFFFFFFF: not given
        unsigned int dIpAddr;   ///< destination address, likewise
        unsigned short dPort;   ///< destination port; 65,535: not given
        unsigned int tsi;       ///< transport session identifier; 0xFFFFFFFF: not given
        std::string contentId;  ///< id of the DASH representation, or what else identifies the content
        SEFDTInfo* efdtInfo;    ///< null: none; good until the next S-TSID or Destroy
        std::string aeaId;      ///< emergency alert that the content belongs to; empty: none
        bool rt;                ///< whether it carries streaming media
    };

    /// Ratings: scheme and value, in ascending order, each pair once.
    using TRatings = std::list<std::pair<std::string, std::string>>;

    /// The caller's callbacks; one that is null is not called. Records and texts are good during the call,
    /// except where it says longer.
    ///
    /// They come inside Parse, on its thread, when the document that they tell of is parsed as a whole, but for
    /// cbMPDData and cbAppData, which hand on text as it came; the documents behind it in the buffer are not
    /// parsed yet. They may call anything of the manager but Parse and Destroy, which
    /// are asserted ("!m->parsing") and do nothing. They may throw: the exception leaves Parse, what it was to
    /// report yet is not reported, and the manager can be used again.
    struct SCallback {
        void* pUserData;  ///< handed back as the first argument

        /// Once per LCT session of an S-TSID, in document order.
        void (*cbLctSession)(void* pUserData, SLctSession* session);
        /// Then once per TSI of it with an EFDT, in ascending order; the first EFDT of a TSI. The record is
        /// good until the next S-TSID or Destroy.
        void (*cbEFDTInfo)(void* pUserData, unsigned int tsi, SEFDTInfo* info);
        /// Once per USBD.
        void (*cbUSBDInfo)(void* pUserData, SUSBDInfo* info);
        /// Once per EFDT that is a document of its own. The record is good until the next one or Destroy.
        void (*cbDirectEFDTInfo)(void* pUserData, unsigned int sessionId, SEFDTInfo* info, const SSessionInfo* session);
        /// Text of an MPD while a USBD is held, with that USBD's service id. Not zero-terminated; it ends one
        /// byte after the end tag.
        void (*cbMPDData)(void* pUserData, const char* mpd, unsigned int length, unsigned short serviceId);
        /// Once per MPD. The record is good until the next MPD or Destroy.
        void (*cbMPDInfo)(void* pUserData, SMPDInfo* info);
        /// Text of an application list, or of a HELD. Not zero-terminated; it ends one byte after the end tag.
        void (*cbAppData)(void* pUserData, const char* data, unsigned int length, const SSessionInfo* session);
        /// Once per RSAT. The object is good until the next RSAT or Destroy.
        void (*cbRSAT)(void* pUserData, CRSAT* rsat);
        /// Content ratings of an MPD that has any: scheme and value, each pair once, in ascending order.
        void (*cbRatingInfo)(void* pUserData, const TRatings& ratings);
    };

    CSLSManager();
    /// Destroy comes first, else "!m" is asserted.
    virtual ~CSLSManager();
    CSLSManager(const CSLSManager&) = delete;
    CSLSManager& operator=(const CSLSManager&) = delete;

    /// Makes the manager ready; the record is copied, null is one without callbacks. A second call is
    /// asserted ("!m"): false.
    bool Create(const SCallback* cb);
    /// Frees everything that callbacks were handed. The object can be created anew. Asserted, and nothing,
    /// without Create ("m") and inside a callback ("!m->parsing").
    virtual void Destroy();

    /// Takes one buffer. Documents longer than 131,071 bytes are skipped. `session` may be null, and then
    /// an EFDT that is a document of its own is skipped; with `skipMpdParse` the MPD is handed on as text
    /// only. Asserted, and nothing, without Create ("m") and inside a callback ("!m->parsing").
    void Parse(const unsigned char* buffer, unsigned int length, const SSessionInfo* session, bool skipMpdParse);

    /// The last USBD; null: none is held. Good until the next USBD or Destroy.
    const CROUTEUsbd* Usbd() const;
    /// The last S-TSID; null: none is held. Good until the next S-TSID or Destroy.
    const CSTSID* Stsid() const;

  private:
    struct SState;

    void m_Parse(const char* text, const SSessionInfo* session, bool skipMpdParse);
    void m_ParseUSBD(const char* buffer, unsigned int size);
    void m_ParseSTSID(const char* buffer, unsigned int size);
    void m_ParseDirectEFDT(const char* buffer, unsigned int size, const SSessionInfo* session);
    void m_ParseMPD(const char* buffer, unsigned int size);
    void m_ParseRSAT(const char* buffer, unsigned int size);
    void m_HandAppData(const char* buffer, unsigned int size, const SSessionInfo* session) const;
    void m_OnEFDTInfo(unsigned int tsi, SEFDTInfo* info);
    void m_OnDirectEFDTInfo(SEFDTInfo* info);
    void m_OnMPDInfo(SMPDInfo* info);
    void m_OnRatingInfo(const std::set<std::pair<std::string, std::string>>& ratings);

    static void sm_CbEFDTInfo(void* context, unsigned int tsi, SEFDTInfo* info);
    static void sm_CbDirectEFDTInfo(void* context, SEFDTInfo* info);
    static void sm_CbMPDInfo(void* context, SMPDInfo* info);
    static void sm_CbRatingInfo(void* context, const std::set<std::pair<std::string, std::string>>& ratings);

    SState* m;
};
