#pragma once

#include "ESGElement.h"

/// A genre of a service or content: the Genre element.
class VYR_API CGenre : public CESGElement {
  public:
    /// What was parsed.
    struct SGenre : SESGState {
        TESGText type;               ///< type: "main", "secondary" or "other"
        TESGText href;               ///< href: the classification scheme
        TESGText content;            ///< text: the term, such as "urn:tva:metadata:cs:ContentCS:3"
        int index = 0;               ///< number behind the last colon of the term; 0 without text
        const char* name = nullptr;  ///< name of the term in SGenreNameParse::refMap; null: unknown
    };

    /// The record; null before Create.
    const SGenre* State() const { return static_cast<const SGenre*>(t_State()); }

  private:
    static bool t_ProcessGenreName(SGenre& state, void* node);
    static void sm_Read(SGenre& state, void* node);
    const vyr::SESGKind& t_Kind() const override;
};
