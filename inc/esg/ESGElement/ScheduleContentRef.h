#pragma once

#include "ESGElement.h"
#include "PresentationWindow.h"

/// A content of a schedule and when it is presented: the ContentReference element.
class VYR_API CScheduleContentRef : public CESGElement {
  public:
    /// What was parsed.
    struct SScheduleContentRef : SESGState {
        TESGText idRef;                                       ///< idRef, the id of the content fragment
        TESGText contentLocation;                             ///< contentLocation
        TOwnedList<CPresentationWindow> presentationWindows;  ///< PresentationWindow
    };

    /// The record; null before Create.
    const SScheduleContentRef* State() const { return static_cast<const SScheduleContentRef*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
