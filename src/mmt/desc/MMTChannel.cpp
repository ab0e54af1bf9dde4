#include "mmt/desc/MMTChannel.h"

#include "common/XmlParser.h"
#include "common/XmlRead.h"

namespace {

struct SState : vyr::TXmlState<CMMTChannel::SChannel> {
    bool m_ProcessParse(void* root) override
    {
        CMMTChannel::SChannel channel;
        vyr::ReadAttribute(root, "serviceGenre", channel.serviceGenre);
        vyr::ReadAttribute(root, "serviceIcon", channel.serviceIcon);
        values = std::move(channel);
        return true;
    }
};

}  // namespace

vyr::SXmlKind CMMTChannel::t_Kind() const
{
    return vyr::XmlKind<SState>("CMMTChannel");
}
