#include "esg/ESGElement/DescriptorEntry.h"

#include "esg/ESGKind.h"

namespace {

using TState = CDescriptorEntry::SDescriptorEntry;

constexpr vyr::SESGSteps k_grouping{"root->m->groupingCri->Create(root->m->pdoc, curr)",
                                    "root->m->groupingCri->Parse()"};
constexpr vyr::SESGSteps k_transport{"root->m->transport->Create(root->m->pdoc, curr)", "root->m->transport->Parse()"};
constexpr vyr::SESGSteps k_unit{"p_sgdu->Create(root->m->pdoc, curr)", "p_sgdu->Parse()"};

void ReadAttributes(TState& state, void* node)
{
    vyr::ReadAttribute(node, "type", state.type);
}

constexpr vyr::SElementHandler<TState> k_handlers[] = {
    {"GroupingCriteria", vyr::TakeElement<&TState::groupingCri, k_grouping>},
    {"Transport", vyr::TakeElement<&TState::transport, k_transport>},
    {"AlternativeAccessURL", vyr::TakeContent<&TState::alternativeAccessURLs>},
    {"ServiceGuideDeliveryUnit", vyr::TakeElement<&TState::deliveryUnits, k_unit>},
};

}  // namespace

const vyr::SESGKind& CDescriptorEntry::t_Kind() const
{
    return vyr::ElementKind<TState, ReadAttributes, k_handlers>("CDescriptorEntry", "DescriptorEntry");
}
