#pragma once

#include <optional>

#include "../common/ATSC3TimeUtility.h"
#include "../platform/Api.h"
#include "ParseLLS.h"

/// Parser of the SystemTime table (LLS_table_id 3; ATSC A/331 6.4): the broadcaster's time parameters.
/// An object that is not created is asserted ("m"); results are then false, 0 or null.
class VYR_API CParseSystemTime : public TCParseLLS {
  public:
    /// Values of the last table, and of earlier ones where the last was silent.
    struct SSystemTime {
        unsigned char groupId;      ///< as given to Create
        int currentUtcOffset;       ///< TAI - UTC, seconds
        unsigned short ptpPrepend;  ///< upper 16 bits of the PTP seconds
        bool leap59;                ///< required: once true, it stays
        bool leap61;                ///< the same
        int utcLocalOffset;         ///< local time - UTC, seconds
        bool dsStatus;              ///< daylight saving in effect; once true, it stays
        int dsDayOfMonth;           ///< 1 to 31; 0: none yet
        int dsHour;                 ///< 0 to 24
    };

    /// Extension: what the attributes of one table say by XML Schema, whatever the range; empty: not given, or no
    /// number, no boolean.
    struct SGiven {
        std::optional<long long> currentUtcOffset;  ///< TAI - UTC, seconds
        std::optional<long long> ptpPrepend;        ///< upper 16 bits of the PTP seconds
        std::optional<bool> leap59;                 ///< the day's last minute has 59 seconds
        std::optional<bool> leap61;                 ///< it has 61
        std::optional<SGivenTime> utcLocalOffset;   ///< local time - UTC, xs:duration
        std::optional<bool> dsStatus;               ///< daylight saving in effect
        std::optional<long long> dsDayOfMonth;      ///< of the next change
        std::optional<long long> dsHour;            ///< likewise
    };

    CParseSystemTime();
    /// Destroy comes first, else "!m" is asserted.
    ~CParseSystemTime() override;

    /// Makes the parser ready for the tables of an LLS group; false when it is already (asserted).
    bool Create(unsigned char groupId);
    /// Frees all that was parsed; the object can be created anew.
    void Destroy() override;
    /// Remembers the caller's channel context.
    bool Start(void* channel);
    /// Counterpart of Start; changes nothing.
    bool Stop();

    /// TAI - UTC, seconds.
    int CurrUtcOffset() const;
    /// Local time - UTC, seconds.
    int UtcLocalOffset() const;
    /// Whether daylight saving was ever said to be in effect.
    bool DsStatus() const;
    /// All values; null before Create, good until Destroy.
    const SSystemTime* State() const;
    /// Extension: what the last table that parsed gives, and nothing of earlier ones; null before Create, good until
    /// the next Parse or Destroy.
    const SGiven* Given() const;

  protected:
    bool t_Parse(IParse::SItem* item) override;

  private:
    struct SState;

    SState* m;
};
