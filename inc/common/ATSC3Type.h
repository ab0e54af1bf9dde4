#pragma once

/// Signalling protocol of a service: slsProtocol of the SLT (ATSC A/331 table 6.5). Any other number
/// that a broadcast carries is kept as it is.
enum EATSC3ProtocolType : int { ATSC3_PROTOCOL_NONE = 0, ATSC3_PROTOCOL_ROUTE = 1, ATSC3_PROTOCOL_MMTP = 2 };

/// Kind of an internet URL: urlType of the SLT (ATSC A/331 table 6.3). Any other number that a
/// broadcast carries is kept as it is; -1 stands for an absent urlType.
enum EATSC3UrlType : int {
    ATSC3_URL_NONE = 0,
    ATSC3_URL_SIGNALING_SERVER = 1,
    ATSC3_URL_ESG_SERVER = 2,
    ATSC3_URL_USAGE_DATA_SERVER = 3,
    ATSC3_URL_DYNAMIC_EVENT_SERVER = 4
};
