#pragma once

#include "esg/ESGKind.h"

// Handlers that the criteria of delivery units and those of their fragments share.

namespace vyr {

template <class TState>
void TakeTimeCriteria(TState* state, void* child)
{
    UpdateAttribute(child, "startTime", state->startTime);
    UpdateAttribute(child, "endTime", state->endTime);
}

template <class TState>
void TakeSelector(TState* state, void* child)
{
    UpdateAttribute(child, "idRef", state->idRef);
}

}  // namespace vyr
