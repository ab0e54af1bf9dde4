#pragma once

#include "ESGState.h"

class CXML;

/// What every record of a fragment begins with. Times are NTP seconds (Unix seconds plus 2,208,988,800).
struct VYR_API SESGFragment : SESGState {
    SESGFragment();
    ~SESGFragment() override;

    TESGText ns;                 ///< namespace of the root element; null: none
    TESGText id;                 ///< id
    unsigned int version = 0;    ///< version
    unsigned int validFrom = 0;  ///< validFrom, NTP seconds
    unsigned int validTo = 0;    ///< validTo, NTP seconds
};

/// Base of the parsers of the fragments of a service guide (OMA BCAST Service Guide, ATSC A/332). Life:
/// construct, Create, Parse, Destroy, delete. The results are the record of State(), which each class has; it
/// is null before Create and good until the next Parse or Destroy. One object is for one fragment: required,
/// a second parse adds to the lists of the first, and a failed one leaves them; see SetReplace. An object that is not
/// created is asserted ("m"); it is used by one thread at a time.
class VYR_API CESGFragmentBase {
  public:
    /// Frees nothing: Destroy comes first, else "!m" is asserted.
    virtual ~CESGFragmentBase();
    CESGFragmentBase(const CESGFragmentBase&) = delete;
    CESGFragmentBase& operator=(const CESGFragmentBase&) = delete;

    /// Makes the parser ready; a second call is asserted: false.
    virtual bool Create();
    /// Frees everything; the object can be created anew.
    virtual void Destroy();
    /// Parses a fragment in memory. False: not well-formed, not of this kind, or without "id". Elements in it
    /// that cannot be used are dropped.
    virtual bool Parse(const char* buffer, unsigned int length);
    /// Parses a file.
    virtual bool Parse(const char* filename);
    /// Extension, off by default: a parse begins with an empty record, which takes the place of the last one when
    /// it succeeds; one that fails leaves the last. Held is then what one fragment holds, 64 bytes at most for
    /// each of its own. What was handed out before is gone with a Parse. Stays as it is set through Destroy and Create.
    void SetReplace(bool replace) { m_replace = replace; }

  protected:
    CESGFragmentBase();
    /// The record, for the derived class; null before Create.
    SESGFragment* t_State() const { return m; }
    /// The record of the fragment that a callback was given; null, asserted, when there is none.
    static SESGFragment* t_StateOf(CESGFragmentBase* fragment);
    /// The fragment that a callback was given; null when it is of another class.
    template <class TFragment>
    static TFragment* t_Cast(void* fragment)
    {
        return dynamic_cast<TFragment*>(static_cast<CESGFragmentBase*>(fragment));
    }
    /// Whether the first `length` characters of `id` are those of `own`; else logs `message`, a text without %.
    static bool t_Match(const TESGText& own, const char* id, int length, const char* message);

  private:
    virtual const vyr::SESGKind& t_Kind() const = 0;
    static bool m_Verify();
    bool m_Read(void* node);
    bool m_Begin(const char* input, const char* text) const;
    bool m_Process(CXML& xml, bool created, const char* step);

    SESGFragment* m;
    const vyr::SESGKind* m_kind;  ///< what the object is, from Create on
    bool m_replace;
};
