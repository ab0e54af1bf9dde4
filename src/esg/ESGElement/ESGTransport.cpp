#include "esg/ESGElement/ESGTransport.h"

#include "esg/ESGKind.h"

namespace {

using TState = CESGTransport::SESGTransport;

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "ipAddress", state.ipAddress);
    vyr::ReadAttribute(node, "port", state.port);
    vyr::ReadAttribute(node, "srcIpAddress", state.srcIpAddress);
    vyr::ReadAttribute(node, "transmissionSessionID", state.transmissionSessionID);
    vyr::ReadAttribute(node, "hasFDT", state.hasFDT);
}

}  // namespace

const vyr::SESGKind& CESGTransport::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes>("CESGTransport", "Transport");
}
