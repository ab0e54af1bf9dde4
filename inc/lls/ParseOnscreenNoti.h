#pragma once

#include <optional>
#include <string>

#include "../platform/Api.h"
#include "ParseLLS.h"

/// Parser of the OnscreenMessageNotification table (LLS_table_id 5; ATSC A/331 6.6): the services for
/// which receivers are to keep the screen clear of messages of their own. Required: tables pile up.
/// The entries of each join those held, until Destroy; see SetReplace. An object that is not created is asserted ("m").
class VYR_API CParseOnscreenNoti : public TCParseLLS {
  public:
    /// One KeepScreenClear element; what it does not give is 0, empty or false.
    struct SKeepScreenClear {
        unsigned short bsid;               ///< broadcast stream of the services
        unsigned short serviceId;          ///< first of them
        unsigned short serviceIdRange;     ///< how many further service ids it is for
        std::string notificationDuration;  ///< xs:duration as it stands
        bool kscFlag;                      ///< keep the screen clear
        unsigned char version;             ///< of the entry, low 8 bits
    };

    /// Extension: what the attributes of an entry say by XML Schema, whatever the range; empty: not given, or no
    /// number, no boolean.
    struct SGiven {
        std::optional<long long> bsid;            ///< broadcast stream of the services
        std::optional<long long> serviceId;       ///< first of them
        std::optional<long long> serviceIdRange;  ///< how many further service ids it is for
        std::optional<bool> kscFlag;              ///< keep the screen clear
        std::optional<long long> version;         ///< of the entry
    };

    CParseOnscreenNoti();
    /// Destroy comes first, else that is asserted.
    ~CParseOnscreenNoti() override;

    /// Makes the parser ready; false when it is already (asserted).
    bool Create();
    /// Frees every entry; the object can be created anew.
    void Destroy() override;

    /// Extension, off by default: what a table brings takes the place of what the last table of its group
    /// left, see TCParseLLS. What was handed out of those is gone then.
    void SetReplace(bool replace);

    /// Number of entries held.
    unsigned int KSCCount() const;
    /// Broadcast stream of the index-th entry; an index outside the range is asserted: 0.
    unsigned short Bsid(unsigned int index) const;
    /// First service of the index-th entry; likewise.
    unsigned short ServiceId(unsigned int index) const;
    /// How many further service ids the index-th entry is for; likewise.
    unsigned short ServiceIdRange(unsigned int index) const;
    /// All of the index-th entry, null outside the range; good until Destroy, or with SetReplace
    /// until the next Parse.
    const SKeepScreenClear* GetKSC(unsigned int index) const;
    /// Extension: what the index-th entry gives; likewise.
    const SGiven* Given(unsigned int index) const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    const SKeepScreenClear* m_Entry(unsigned int index) const;
    void m_DumpKSC() const;

    SState* m;
};
