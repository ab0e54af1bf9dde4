#pragma once

#include "ESGElement.h"

/// An icon: the Icon element.
class VYR_API CIcon : public CESGElement {
  public:
    /// What was parsed.
    struct SIcon : SESGState {
        TESGText link;         ///< Link, text
        TESGText description;  ///< Description, text
        TESGText uri;          ///< uri
        TESGText uriType;      ///< uriType
        TESGText mimeType;     ///< MIMEType
        int size = 0;          ///< size, bytes
        TESGText language;     ///< language
        TESGText iconUri;      ///< iconUri
    };

    /// The record; null before Create.
    const SIcon* State() const { return static_cast<const SIcon*>(t_State()); }

  private:
    const vyr::SESGKind& t_Kind() const override;
};
